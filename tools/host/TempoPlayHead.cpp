// SPDX-License-Identifier: AGPL-3.0-or-later
// Fixed-tempo transport for offline rendering.
#include "TempoPlayHead.h"

TempoPlayHead::TempoPlayHead (double bpm) : tempo (bpm) {}

void TempoPlayHead::setTempo (double bpm) { tempo = bpm; }

void TempoPlayHead::setSampleRate (double sampleRate) { rate = sampleRate; }

void TempoPlayHead::setTimeInSamples (juce::int64 samples) { timeInSamples = samples; }

juce::Optional<juce::AudioPlayHead::PositionInfo> TempoPlayHead::getPosition() const
{
    PositionInfo info;
    const double seconds = (double) timeInSamples / rate;
    info.setBpm (tempo);
    info.setTimeSignature (TimeSignature { 4, 4 });
    info.setTimeInSamples (timeInSamples);
    info.setTimeInSeconds (seconds);
    const double quarterNotes = seconds * tempo / 60.0;
    info.setPpqPosition (quarterNotes);
    info.setPpqPositionOfLastBarStart (std::floor (quarterNotes / 4.0) * 4.0);
    info.setBarCount ((juce::int64) std::floor (quarterNotes / 4.0));
    info.setIsPlaying (true);
    info.setIsRecording (false);
    info.setIsLooping (false);
    return info;
}
