// SPDX-License-Identifier: AGPL-3.0-or-later
#include "effects/BlockDelay.h"
#include "effects/TiltEqualiser.h"

void BlockDelay::reset (double) {}
void BlockDelay::setupBlock (const Settings&) {}
void BlockDelay::process (juce::AudioBuffer<float>&, int, bool, float, TiltEqualiser&) {}
