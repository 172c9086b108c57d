// SPDX-License-Identifier: AGPL-3.0-or-later
// The one sound: it applies to every note and every channel.
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

class SynthSound : public juce::SynthesiserSound
{
public:
    bool appliesToNote (int) override { return true; }
    bool appliesToChannel (int) override { return true; }
};
