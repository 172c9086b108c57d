// SPDX-License-Identifier: AGPL-3.0-or-later
// Fifteen-line feedback delay network whose line lengths follow the low modes of a rectangular room;
// one network per output channel, each with its own random detuning of the lines.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "effects/FdnLines.h"

class FdnReverb
{
public:
    static constexpr int numLines = FdnLines::numLines;

    // `lineCapacity` bounds the delays; `draws` are fifteen values of the unseeded rand sequence,
    // one per line in order, from which the detunings come. Construct only while preparing.
    FdnReverb (long lineCapacity, const int* draws);

    // The rate every network of the process works at; set before constructing one.
    static void setSampleRate (float newSampleRate);

    void setRoom (double lengthX, double lengthY, double lengthZ) noexcept;
    void setDecay (double newRt60Low, double newRt60High) noexcept;
    void setSpread (double newSpread) noexcept { spread = newSpread; }

    // Recomputes delays, gains and absorption of every line from the room, and sizes the lines to the
    // longest delay they read; allocates, so call only while preparing.
    void updateLines();

    // One output per input. `inputSilent` says every input is zero: the network then watches its
    // tail and, once all it holds lies below -140 dBFS, clears itself and rests until input returns.
    void process (const double* input, double* output, int numSamples, bool inputSilent) noexcept;

    // True while the network holds nothing but zeros and so stays silent without input.
    bool isResting() const noexcept { return resting; }
    long getLineLength() const noexcept { return state.ringLength; }

private:
    // Stands in for `numSamples` ticks of a network that holds only zeros: the fade and the taps move
    // on as they would; the write position may stay, as nothing in the lines tells positions apart.
    void skipSilence (long numSamples) noexcept;
    bool tailBelow (double limit) const noexcept;
    void clearTail() noexcept;

    static double sampleRate;
    static double inverseSampleRate;

    long capacity = 1; // the longest delay a line may be given
    std::vector<double> buffers;
    FdnLines state;
    bool resting = false;
    // Tap choices made while resting since the network last ticked (at most 2): from two on, both taps
    // hold what another choice would compute, as nothing it reads moves while the network rests.
    int restingChoices = 0;

    std::array<double, numLines> detune {};
    double lx = 0.0, ly = 0.0, lz = 0.0;
    double spread = 0.0;
    double rt60Low = 0.0, rt60High = 0.0;
};
