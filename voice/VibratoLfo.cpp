// SPDX-License-Identifier: AGPL-3.0-or-later
// Rate set-up of the vibrato source.
#include "voice/VibratoLfo.h"

#include <algorithm>

void VibratoLfo::prepare (double sampleRate)
{
    // Below 32 kHz the generator simply runs slow rather than changing shape.
    rateLimitedSampleRate = std::max ((float) sampleRate, 32000.0f);
    inverseRate = 1.0f / rateLimitedSampleRate;
    frequency = std::min (rateLimitedSampleRate * 0.125f, 5.0f);
    halfPeriod = (int) (rateLimitedSampleRate * 0.5f / frequency);
}
