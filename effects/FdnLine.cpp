// SPDX-License-Identifier: AGPL-3.0-or-later
// Delay line of the room reverb: allocation and delay setting (never on the audio thread).
#include "effects/FdnLine.h"

#include <algorithm>

FdnLine::FdnLine (long length)
    : capacity (std::max (length, 1L)),
      buffer ((size_t) capacity, 0.0)
{
}

void FdnLine::setDelay (double delaySamples)
{
    // The integer part sits 0.618 below the delay so that the all-pass always sees a fraction in
    // [0.618, 1.618], where its phase delay is flattest.
    // Written so that a NaN lands on the lower limit instead of turning into a wild index.
    double dc = delaySamples;
    if (! (dc >= 0.618))
        dc = 0.618;
    if (dc > (double) capacity)
        dc = (double) capacity;
    delayInt = (long) (dc - 0.618);
    const double frac = dc - (double) delayInt;
    allpassCoefficient = (1.0 - frac) / (1.0 + frac);
}
