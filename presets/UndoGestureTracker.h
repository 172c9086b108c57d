// SPDX-License-Identifier: AGPL-3.0-or-later
// Makes each user gesture on a parameter (a drag from press to release, a click, a key press) one undo step.
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace velkaro
{
class UndoGestureTracker : private juce::AudioProcessorParameter::Listener
{
public:
    UndoGestureTracker (juce::AudioProcessorValueTreeState& state, juce::UndoManager& undoManager);
    ~UndoGestureTracker() override;

private:
    void parameterValueChanged (int, float) override {}
    void parameterGestureChanged (int parameterIndex, bool gestureIsStarting) override;

    juce::AudioProcessorValueTreeState& state;
    juce::UndoManager& undoManager;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (UndoGestureTracker)
};
} // namespace velkaro
