// SPDX-License-Identifier: AGPL-3.0-or-later
// The small widgets under the mouse, and the help text behind every tooltip.
#include <gtest/gtest.h>

#include "editor/ClickLabel.h"
#include "editor/ClickUndo.h"
#include "editor/DrawableBar.h"
#include "editor/ControlHelp.h"
#include "editor/ImgToggleButton.h"
#include "../support/TestProcessor.h"

namespace
{
juce::MouseEvent mouseEvent (juce::Component& c, juce::ModifierKeys mods, bool dragged = false)
{
    auto source = juce::Desktop::getInstance().getMainMouseSource();
    const juce::Point<float> centre = c.getLocalBounds().getCentre().toFloat();
    return juce::MouseEvent (source, centre, mods, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, &c, &c, juce::Time::getCurrentTime(), centre,
                             juce::Time::getCurrentTime(), 1, dragged);
}

juce::Image twoFrames()
{
    juce::Image strip (juce::Image::ARGB, 4, 8, true);
    strip.clear ({ 0, 0, 4, 4 }, juce::Colours::black);
    strip.clear ({ 0, 4, 4, 4 }, juce::Colours::white);
    return strip;
}
} // namespace

TEST (HelpText, LookupReturnsTheTextFromItsFirstHyphen)
{
    struct Case { const char* id; const char* text; };
    const Case cases[] = {
        { "bp1", "- Activate the Octaver module" },
        { "octave", "- Mix the transposed signal with the dry signal\t" },
        { "squeezeit", "- Apply ring modulation, up or down, to the recorded block (AM to delay) " },
        { "timbre", "- Set the amount of wave modulation, FM synthesis  " },
        { "flangerit", "- Set the amount and character (- or +) of the Flanger effect" },
        { "tap", "- Click this 4 times to set an approximate BPM for a half 4/4 bar length" },
        { "nothing", "As the name label say..." },
        { "BP1", "As the name label say..." },
        // The text opens with a line feed, so its first line is empty and answers the empty id.
        { "", "" },
    };
    for (const auto& c : cases)
        EXPECT_EQ (getHelpFor (c.id), juce::String (c.text)) << c.id;
    EXPECT_TRUE (getHelpFor ("attack").contains ("attack,  how clicky"));
}

TEST (ImgToggleButtonTest, LatchingSwitchFlipsOnReleaseAndIgnoresRightClicks)
{
    juce::ScopedJuceInitialiser_GUI gui;
    ImgToggleButton button (twoFrames(), true);
    button.setBounds (0, 0, 20, 20);
    int clicks = 0, rightClicks = 0;
    button.onClick = [&clicks] { ++clicks; };
    button.rightClickAction = [&rightClicks] { ++rightClicks; };

    const auto left = juce::ModifierKeys (juce::ModifierKeys::leftButtonModifier);
    button.mouseDown (mouseEvent (button, left));
    EXPECT_FALSE (button.getToggleState()); // nothing on the way down
    button.mouseUp (mouseEvent (button, left));
    EXPECT_TRUE (button.getToggleState());
    EXPECT_GE (clicks, 1);

    const auto right = juce::ModifierKeys (juce::ModifierKeys::rightButtonModifier);
    button.mouseDown (mouseEvent (button, right));
    button.mouseUp (mouseEvent (button, right));
    EXPECT_TRUE (button.getToggleState());
    EXPECT_EQ (rightClicks, 1);

    // The frame shown follows the state.
    const auto image = button.createComponentSnapshot (button.getLocalBounds(), true, 1.0f);
    EXPECT_EQ (image.getPixelAt (10, 10).getBrightness(), 1.0f);
}

TEST (ImgToggleButtonTest, MomentaryButtonIsOnWhileHeldAndCountsTaps)
{
    juce::ScopedJuceInitialiser_GUI gui;
    ImgToggleButton tap (twoFrames(), false);
    tap.setBounds (0, 0, 32, 28);
    const auto left = juce::ModifierKeys (juce::ModifierKeys::leftButtonModifier);
    for (int i = 0; i < 4; ++i)
    {
        tap.mouseDown (mouseEvent (tap, left));
        EXPECT_TRUE (tap.getToggleState());
        tap.mouseUp (mouseEvent (tap, left));
        EXPECT_FALSE (tap.getToggleState());
    }
    // Four real presses made a tempo; presses within one millisecond give no tempo at all.
    EXPECT_TRUE (tap.hasNewTapInterval());
    EXPECT_TRUE (tap.getTapText().startsWith ("TAP\n"));
    for (int i = 0; i < 4; ++i)
        tap.addTap (77);
    EXPECT_EQ (tap.getTapInterval(), 0);
    EXPECT_EQ (tap.getTapText(), "TAP\nYour\nBPM");
    tap.showTapText = true;
    tap.createComponentSnapshot (tap.getLocalBounds(), true, 1.0f);
}

TEST (ClickLabelTest, LightsAndClicksOnlyForAPlainClick)
{
    juce::ScopedJuceInitialiser_GUI gui;
    juce::Component parent;
    ClickLabel label ({}, "reset");
    parent.addAndMakeVisible (label);
    parent.setBounds (0, 0, 100, 40);
    label.setBounds (0, 0, 100, 20);
    label.setColour (juce::Label::textColourId, juce::Colours::white);
    int clicks = 0;
    label.onClick = [&clicks] { ++clicks; };

    const auto none = juce::ModifierKeys();
    label.mouseEnter (mouseEvent (label, none));
    EXPECT_EQ (label.findColour (juce::Label::textColourId), juce::Colour (0xffff0000));
    label.mouseExit (mouseEvent (label, none));
    EXPECT_EQ (label.findColour (juce::Label::textColourId), juce::Colours::white);

    // A drag neither lights nor clicks.
    label.mouseEnter (mouseEvent (label, none, true));
    EXPECT_EQ (label.findColour (juce::Label::textColourId), juce::Colours::white);
    label.mouseUp (mouseEvent (label, none, true));
    EXPECT_EQ (clicks, 0);

    label.mouseUp (mouseEvent (label, none));
    EXPECT_EQ (clicks, 1);
    label.mouseUp (mouseEvent (label, juce::ModifierKeys (juce::ModifierKeys::rightButtonModifier)));
    EXPECT_EQ (clicks, 1);

    // A disabled parent disables the label.
    parent.setEnabled (false);
    label.mouseUp (mouseEvent (label, none));
    EXPECT_EQ (clicks, 1);
}

TEST (DrawableBarTest, OnlyTheLinkIconTakesTheMouse)
{
    juce::ScopedJuceInitialiser_GUI gui;
    juce::Image picture (juce::Image::ARGB, 300, 60, true);
    DrawableBar bar;
    bar.brandImage = &picture;
    bar.versionText = "v0.9.1";
    bar.setBounds (0, 0, 878, 24);
    EXPECT_FALSE (bar.hitTest (10, 10)); // nothing takes the mouse before the bar has laid itself out
    bar.createComponentSnapshot (bar.getLocalBounds(), true, 1.0f);
    ASSERT_FALSE (bar.linkArea.isEmpty());
    const auto centre = bar.linkArea.getCentre().toInt();
    EXPECT_TRUE (bar.hitTest (centre.x, centre.y));
    EXPECT_FALSE (bar.hitTest (5, 12));
    EXPECT_FALSE (bar.hitTest (870, 12));
    // The link sits right of the product name, which starts at 41 % of the width.
    EXPECT_GT (bar.linkArea.getX(), 0.41f * 878.0f);
}

TEST (ClickUndoTest, BothShapesLoadAndPaint)
{
    juce::ScopedJuceInitialiser_GUI gui;
    for (const auto shape : { ClickUndo::Shape::undo, ClickUndo::Shape::redo })
    {
        ClickUndo button ("3", shape);
        button.setBounds (0, 0, 48, 24);
        EXPECT_FALSE (button.icon.isEmpty());
        button.createComponentSnapshot (button.getLocalBounds(), true, 1.0f);
    }
    // The two arrows point opposite ways.
    ClickUndo undo ("", ClickUndo::Shape::undo), redo ("", ClickUndo::Shape::redo);
    EXPECT_NE (undo.icon.getBounds().getCentreX() < 60.0f, redo.icon.getBounds().getCentreX() < 60.0f);
}
