// SPDX-License-Identifier: AGPL-3.0-or-later
// A transport that is always playing at a fixed tempo in 4/4, as a sequencer would report it.
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

class TempoPlayHead : public juce::AudioPlayHead
{
public:
    explicit TempoPlayHead (double bpm = 120.0);

    void setTempo (double bpm);
    void setSampleRate (double sampleRate);
    // The position of the next block's first sample.
    void setTimeInSamples (juce::int64 samples);

    juce::Optional<PositionInfo> getPosition() const override;

private:
    double tempo;
    double rate = 48000.0;
    juce::int64 timeInSamples = 0;
};
