// SPDX-License-Identifier: AGPL-3.0-or-later
#include "effects/ReverbStage.h"

void ReverbStage::prepare (double) {}

void ReverbStage::process (juce::AudioBuffer<float>& main, int numSamples, float, DcBlocker& left, DcBlocker& right)
{
    auto* l = main.getWritePointer (0);
    auto* r = main.getWritePointer (1);
    for (int i = 0; i < numSamples; ++i)
    {
        l[i] = left.process (l[i]);
        r[i] = right.process (r[i]);
    }
}
