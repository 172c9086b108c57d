// SPDX-License-Identifier: AGPL-3.0-or-later
#include "effects/Octaver.h"

void Octaver::prepare (double, int) {}
void Octaver::process (juce::AudioBuffer<float>&, int, float, float) {}
