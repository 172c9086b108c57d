// SPDX-License-Identifier: AGPL-3.0-or-later
// Records a block, freezes a windowed copy and plays it forwards or backwards. (Placeholder.)
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

class TiltEqualiser;

class BlockDelay
{
public:
    struct Settings
    {
        float time, sync, fmit, squeezeit, fdbk, envms, revmix, rev;
        double hostBpm;
        float sampleRate;
    };

    void reset (double sampleRate);
    void setupBlock (const Settings&);
    // One pass over the wet buffer: delay, mix (if delayOn) and the tilt filter at the end of each sample.
    void process (juce::AudioBuffer<float>& wet, int numSamples, bool delayOn, float revmix, TiltEqualiser& tilt);
};
