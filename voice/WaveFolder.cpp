// SPDX-License-Identifier: AGPL-3.0-or-later
// Rate set-up and switching of the wave folder.
#include "voice/WaveFolder.h"

void WaveFolder::prepare (double sampleRate)
{
    foldFilter.prepare (sampleRate, 2500.0);
    highPassFold.prepare (sampleRate, 40.0f);
    foldMix.reset ((int) std::floor (sampleRate * 0.05));
}

void WaveFolder::setEnabled (bool on)
{
    if (on == foldOn)
        return;
    foldOn = on;
    foldMix.setTargetValue (on ? 1.0f : 0.0f);
}
