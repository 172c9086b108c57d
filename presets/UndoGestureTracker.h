// SPDX-License-Identifier: AGPL-3.0-or-later
// Makes each user gesture on a parameter (a drag from press to release, a click, a key press) one undo step.
#pragma once

#include <vector>

#include <juce_audio_processors/juce_audio_processors.h>

namespace velkaro
{
class UndoGestureTracker : private juce::AudioProcessorParameter::Listener, public juce::KeyListener
{
public:
    UndoGestureTracker (juce::AudioProcessorValueTreeState& state, juce::UndoManager& undoManager);
    ~UndoGestureTracker() override;

    // Sliders change their value on arrow keys without a gesture of their own; watch those below `root`.
    void watchKeysOf (juce::Component& root);

    // Called before the focused slider sees the key; it never takes the key.
    bool keyPressed (const juce::KeyPress& key, juce::Component* originatingComponent) override;

    // Flushes what earlier gestures left pending into their own step, then opens a new one.
    void beginGesture();

private:
    void parameterValueChanged (int, float) override {}
    void parameterGestureChanged (int parameterIndex, bool gestureIsStarting) override;

    juce::AudioProcessorValueTreeState& state;
    juce::UndoManager& undoManager;
    std::vector<juce::Component::SafePointer<juce::Component>> watched;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (UndoGestureTracker)
};
} // namespace velkaro
