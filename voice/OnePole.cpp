// SPDX-License-Identifier: AGPL-3.0-or-later
// Coefficient set-up of the voice's one-pole low-pass.
#include "voice/OnePole.h"

#include <algorithm>
#include <cmath>

void OnePole::prepare (double sampleRate, double cutoffHz)
{
    // Held inside a range where the exponential stays a sane low-pass even at odd rates.
    double c = cutoffHz / sampleRate;
    c = std::min (c, 0.5);
    c = std::max (c, 1.0e-6);
    a = (float) std::exp (c * ((double) pi * -2.0));
}
