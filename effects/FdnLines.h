// SPDX-License-Identifier: AGPL-3.0-or-later
// Everything one tick of a feedback delay network reads and writes: fifteen lines padded to sixteen lanes.
#pragma once

#include <cstdint>

struct FdnLines
{
    static constexpr int numLines = 15;
    static constexpr int width = 16; // lines padded to a whole number of vectors; lane 15 is never read
    static constexpr double restingLimit = 1.0e-7; // -140 dBFS

    // Each line is stored contiguously with a length of its own (its delay plus one), so a tick's
    // writes and reads walk fifteen sequential streams instead of striding across every line.
    alignas (32) double run[32] {};  // lineOut[0..14], then lineOut[0..13] again: each matrix row is a straight run
    alignas (32) double coefficient[2][width] {};
    alignas (32) double lastInput[2][width] {};
    alignas (32) double lastOutput[2][width] {};
    alignas (32) double absorptionB[width] {};
    alignas (32) double absorptionA[width] {};
    alignas (32) double absorptionState[width] {};
    alignas (32) double lineGain[width] {};
    alignas (32) std::int64_t readAt[2][width] {}; // element index of each tap's next read
    alignas (32) std::int64_t writeAt[width] {};   // element index of each line's next write
    alignas (32) std::int64_t lineLast[width] {};  // element index of each line's last sample
    alignas (32) std::int64_t lineLength[width] {}; // lane 15: sixteen samples no tick writes
    std::int64_t lineStart[width] {};
    alignas (32) double allpassCoefficient[width] {};
    long delayInt[width] {};

    double* lines = nullptr;
    long ringLength = 1; // the longest line's length: that many quiet writes have refilled every line
    int fadeCount = 0;
    int activeTap = 0;
    bool tapsShareReads = false; // both taps read the same rows
    long quietTicks = 0; // ticks since a line was written at or above the resting limit
};
