// SPDX-License-Identifier: AGPL-3.0-or-later
// Fifteen-line feedback delay network whose line lengths follow the low modes of a rectangular room;
// one network per output channel, each with its own random detuning of the lines.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

class FdnReverb
{
public:
    static constexpr int numLines = 15;

    // Allocates the lines, so construct only while preparing. `draws` are fifteen values of the
    // unseeded rand sequence, one per line in order, from which the detunings come.
    FdnReverb (long lineCapacity, const int* draws);

    // The rate every network of the process works at; set before constructing one.
    static void setSampleRate (float newSampleRate);

    void setRoom (double lengthX, double lengthY, double lengthZ) noexcept;
    void setDecay (double newRt60Low, double newRt60High) noexcept;
    void setSpread (double newSpread) noexcept { spread = newSpread; }

    // Recomputes delays, gains and absorption of every line from the room.
    void updateLines();

    double tick (double input) noexcept;

private:
    // Lines are kept as columns: every line has the same capacity and advances in step, so the write
    // position, the fade position and the active tap are one value for all of them. Arrays are 16
    // wide so whole rows can be summed in pairs; entry 15 is never read back.
    static constexpr std::size_t width = 16;
    using LineArray = std::array<double, width>;

    struct Allpass
    {
        alignas (16) LineArray coefficient {};
        alignas (16) LineArray lastInput {};
        alignas (16) LineArray lastOutput {};
    };

    static double sampleRate;
    static double inverseSampleRate;

    long capacity = 1;
    std::vector<double> buffers; // line i occupies [i * capacity, (i + 1) * capacity)

    std::array<Allpass, 2> allpass {};
    alignas (16) LineArray allpassCoefficient {};
    std::array<long, width> delayInt {};
    alignas (16) std::array<std::array<int, width>, 2> readIndex {}; // below capacity, which fits an int
    long writeIndex = 0;
    int fadeCount = 0;
    int activeTap = 0;

    // The absorbing one-pole per line: z = x b - a z1.
    alignas (16) LineArray absorptionB {};
    alignas (16) LineArray absorptionA {};
    alignas (16) LineArray absorptionState {};

    alignas (16) LineArray lineGain {};
    // lineOut followed by lineOutCopy[0..13]: the previous tick's outputs laid out twice, so that every
    // row of the circulant mixing matrix is a straight run of 15 values; two zeros pad it to 16 wide.
    alignas (16) std::array<double, numLines + numLines - 1 + 2> lineOutRun {};
    std::array<double, numLines> detune {};

    double lx = 0.0, ly = 0.0, lz = 0.0;
    double spread = 0.0;
    double rt60Low = 0.0, rt60High = 0.0;
};
