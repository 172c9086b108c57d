// SPDX-License-Identifier: AGPL-3.0-or-later
// The C library's rand sequence as it runs in a process that nothing seeds (first value 1804289383),
// kept by the plug-in itself: hosts and the VST3 module code call srand, which made the reverb's
// detunings differ from one load to the next. One sequence serves every instance in the process.
#pragma once

#include <cstddef>

class UnseededRand
{
public:
    static constexpr int maxValue = 2147483647;

    // The next `count` values of the shared sequence, taken as one run even when several instances
    // prepare on different threads at once.
    static void draw (int* values, std::size_t count);

    // Puts the shared sequence back to its first value, as at the start of a process.
    static void restart();
};
