// SPDX-License-Identifier: AGPL-3.0-or-later
// A latching switch flips on release; a momentary one is on while held and counts a tap per press.
#include "editor/ImgToggleButton.h"

ImgToggleButton::ImgToggleButton (juce::Image image, bool toggling)
    : isToggling (toggling), strip (std::move (image))
{
    frameWidth = strip.getWidth();
    frameHeight = strip.getHeight() / 2;
}

ImgToggleButton::~ImgToggleButton() = default;

void ImgToggleButton::paint (juce::Graphics& g)
{
    if (isToggling && ! isPressed)
        currentFrame = getToggleState() ? frameCount - 1 : 0;

    g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
    if (strip.isValid() && ! g.getClipBounds().isEmpty() && frameHeight > 0)
    {
        const auto frame = strip.getClippedImage ({ 0, frameHeight * currentFrame, frameWidth, frameHeight });
        g.drawImage (frame, getLocalBounds().toFloat(), juce::RectanglePlacement::stretchToFit);
    }

    if (showTapText)
    {
        g.setColour (juce::Colour (0xff000000));
        g.setFont (g.getCurrentFont().withHeight ((float) getHeight() / 3.5f));
        g.drawFittedText (getTapText(), getLocalBounds(), juce::Justification::centred, 3, 0.0f);
    }
}

juce::String ImgToggleButton::getTapText() const
{
    // Four taps inside one millisecond give no tempo either.
    if (tapInterval <= 0)
        return "TAP\nYour\nBPM";
    return "TAP\n" + juce::String (juce::roundToInt (60000.0 / (double) tapInterval)) + "\nBPM";
}

void ImgToggleButton::mouseDown (const juce::MouseEvent& e)
{
    if (e.mods.isPopupMenu())
        return;

    isPressed = true;
    if (isToggling && frameCount < 3)
        return;

    currentFrame = 1;
    repaint();

    if (! isToggling)
    {
        setToggleState (true, juce::sendNotification);
        addTap (juce::Time::getMillisecondCounter());
    }
}

void ImgToggleButton::addTap (juce::uint32 timeMs)
{
    tapTimes[(size_t) (tapCount % 4)] = timeMs;
    tapIntervalIsNew = false;
    ++tapCount;

    if (tapCount == 4)
    {
        // Unsigned differences stay right across a wrap of the millisecond counter.
        const juce::uint32 sum = (tapTimes[1] - tapTimes[0]) + (tapTimes[2] - tapTimes[1]) + (tapTimes[3] - tapTimes[2]);
        tapMeanMs = (double) sum / 3.0;
        tapInterval = juce::roundToInt (tapMeanMs);
        tapIntervalIsNew = true;
        tapCount = 0;
        if (onNewTapInterval)
            onNewTapInterval();
    }
}

void ImgToggleButton::mouseUp (const juce::MouseEvent& e)
{
    if (e.mods.isPopupMenu())
    {
        if (rightClickAction)
            rightClickAction();
        return;
    }

    isPressed = false;
    if (isToggling)
    {
        setToggleState (! getToggleState(), juce::sendNotification);
        repaint();
        currentFrame = getToggleState() ? frameCount - 1 : 0;
        if (onClick)
            onClick();
    }
    else
    {
        setToggleState (false, juce::sendNotification);
        currentFrame = 0;
    }
    repaint();
}
