// SPDX-License-Identifier: AGPL-3.0-or-later
// Fifteen-line feedback delay network whose line lengths follow the low modes of a rectangular room;
// one network per output channel, each with its own random detuning of the lines.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "effects/FdnAbsorption.h"
#include "effects/FdnLine.h"

class FdnReverb
{
public:
    static constexpr int numLines = 15;

    // Draws the lines' detunings from the C library's rand, so construct only while preparing.
    explicit FdnReverb (long lineCapacity);

    // The rate every network of the process works at; set before constructing one.
    static void setSampleRate (float newSampleRate);
    static double getSampleRate() noexcept { return sampleRate; }

    void setRoom (double lengthX, double lengthY, double lengthZ) noexcept;
    void setDecay (double newRt60Low, double newRt60High) noexcept;
    void setSpread (double newSpread) noexcept { spread = newSpread; }

    // Recomputes delays, gains and absorption of every line from the room.
    void updateLines();

    double tick (double input) noexcept;

private:
    static double sampleRate;
    static double inverseSampleRate;

    std::vector<FdnLine> lines;
    std::array<FdnAbsorption, numLines> absorption {};
    std::array<double, numLines> lineGain {};
    // lineOut followed by lineOutCopy[0..13]: the previous tick's outputs laid out twice, so that every
    // row of the circulant mixing matrix is a straight run of 15 values. Two more zeros let the rows
    // be summed 16 wide; the sixteenth sum is never used.
    static constexpr std::size_t paddedLines = 16;
    alignas (16) std::array<double, numLines + numLines - 1 + 2> lineOutRun {};
    std::array<double, numLines> detune {};

    double lx = 0.0, ly = 0.0, lz = 0.0;
    double spread = 0.0;
    double rt60Low = 0.0, rt60High = 0.0;
};
