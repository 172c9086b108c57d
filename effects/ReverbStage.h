// SPDX-License-Identifier: AGPL-3.0-or-later
// Last stage: DC blocker, 120 Hz high-pass, pre-delay and two room-mode networks. (Placeholder.)
#pragma once

#include "core/DcBlocker.h"
#include <juce_audio_basics/juce_audio_basics.h>

class ReverbStage
{
public:
    void prepare (double sampleRate);
    void process (juce::AudioBuffer<float>& main, int numSamples, float reverb, DcBlocker& left, DcBlocker& right);
};
