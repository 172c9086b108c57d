// SPDX-License-Identifier: AGPL-3.0-or-later
// A switch drawn from a two-frame film strip. As a momentary button it also counts taps and keeps
// the mean interval of the last four.
#pragma once

#include <array>
#include <functional>

#include <juce_gui_basics/juce_gui_basics.h>

class ImgToggleButton : public juce::ToggleButton
{
public:
    ImgToggleButton (juce::Image strip, bool isToggling);
    ~ImgToggleButton() override;

    void mouseDown (const juce::MouseEvent&) override;
    void mouseUp (const juce::MouseEvent&) override;
    void paint (juce::Graphics&) override;

    int getTapInterval() const noexcept { return tapInterval; }
    // The same mean before rounding: four beats of it are a bar to the millisecond.
    double getTapMeanMs() const noexcept { return tapMeanMs; }
    bool hasNewTapInterval() const noexcept { return tapIntervalIsNew; }
    void clearNewTapInterval() noexcept { tapIntervalIsNew = false; }

    // Counts one tap at the given millisecond stamp; the mouse passes the framework's counter.
    void addTap (juce::uint32 timeMs);

    // The text drawn over the tap button.
    juce::String getTapText() const;

    std::function<void()> rightClickAction;
    // Called when a fourth tap has made a new interval.
    std::function<void()> onNewTapInterval;
    bool showTapText = false;

private:
    const bool isToggling;
    bool isPressed = false;
    juce::Image strip;
    int frameCount = 2;
    int currentFrame = 0;
    int frameWidth = 0;
    int frameHeight = 0;

    std::array<juce::uint32, 4> tapTimes {};
    int tapInterval = -1;
    double tapMeanMs = -1.0;
    int tapCount = 0;
    bool tapIntervalIsNew = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ImgToggleButton)
};
