// SPDX-License-Identifier: AGPL-3.0-or-later
// Rate set-up of the voice's phase accumulator.
#include "voice/PhaseOscillator.h"

#include <algorithm>

void PhaseOscillator::prepare (double sampleRate)
{
    const float rate = (float) sampleRate;
    inverseRate = 1.0 / (double) std::max (rate, 16000.0f);
    phase = 0.0;
}
