// SPDX-License-Identifier: AGPL-3.0-or-later
// The on-screen keyboard: keys outside the instrument's sweet range are shaded, one note is marked.
#pragma once

#include <array>

#include <juce_audio_utils/juce_audio_utils.h>

class CustomMidiKeys : public juce::MidiKeyboardComponent
{
public:
    CustomMidiKeys (juce::MidiKeyboardState& state, Orientation orientation);

    void paint (juce::Graphics&) override;

    const std::array<int, 12> isBlackKey { 0, 1, 0, 1, 0, 0, 1, 0, 1, 0, 1, 0 };
    int markedNote = 96;

private:
    juce::Timer& stateTimer() noexcept;
    // The framework's own check of the keyboard state, run at the window's refresh.
    void refreshFromState();

    juce::VBlankAttachment refresh { this, [this] { refreshFromState(); } };
};
