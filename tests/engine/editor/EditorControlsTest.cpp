// SPDX-License-Identifier: AGPL-3.0-or-later
// Every control of the panel moves its parameter both ways and carries its help text; sync and tap act
// on `time`.
#include "editor/ControlHelp.h"
#include "EditorFixture.h"

namespace
{
juce::Label* textBoxOf (juce::Slider& slider)
{
    for (auto* child : slider.getChildren())
        if (auto* label = dynamic_cast<juce::Label*> (child))
            return label;
    return nullptr;
}
} // namespace

TEST_F (EditorFixture, EveryControlMovesItsParameterFollowsTheHostAndExplainsItself)
{
    openEditor();
    for (const auto& row : parameterTable)
    {
        SCOPED_TRACE (row.id);
        auto& param = parameter (row.id);
        auto* c = control (row.id);
        ASSERT_NE (c, nullptr);
        auto* tip = dynamic_cast<juce::SettableTooltipClient*> (c);
        ASSERT_NE (tip, nullptr);
        EXPECT_EQ (tip->getTooltip(), getHelpFor (row.id));
        EXPECT_TRUE (tip->getTooltip().startsWith ("- ")) << "the help text is found from its first hyphen";

        if (auto* slider = dynamic_cast<juce::Slider*> (c))
        {
            // Panel to parameter.
            slider->setValue (row.min + 0.7 * (row.max - row.min), juce::sendNotificationSync);
            EXPECT_NEAR (processor().getParameterValue (row.index), slider->getValue(), 1e-4);
            EXPECT_NE (processor().getParameterValue (row.index), (float) row.defaultValue);
            // Host to panel.
            param.setValueNotifyingHost (0.25f);
            EXPECT_NEAR (slider->getValue(), param.convertFrom0to1 (0.25f), 1e-4);
            // Double-click returns to the default.
            EXPECT_TRUE (slider->isDoubleClickReturnEnabled());
            EXPECT_NEAR (slider->getDoubleClickReturnValue(), row.defaultValue, 1e-6 * (1.0 + std::abs (row.defaultValue)));
        }
        else if (auto* button = dynamic_cast<juce::Button*> (c))
        {
            const bool wasOn = button->getToggleState();
            button->setToggleState (! wasOn, juce::sendNotificationSync);
            EXPECT_EQ (processor().getParameterValue (row.index), wasOn ? 0.0f : 1.0f);
            param.setValueNotifyingHost (wasOn ? 1.0f : 0.0f);
            EXPECT_EQ (button->getToggleState(), wasOn);
        }
        else
        {
            ADD_FAILURE() << "no control for " << row.id;
        }
    }
}

TEST_F (EditorFixture, SyncSwitchesTheTimeTextAndHidesTap)
{
    openEditor();
    auto* timeKnob = dynamic_cast<juce::Slider*> (control ("time"));
    auto* box = textBoxOf (*timeKnob);
    ASSERT_NE (box, nullptr);
    EXPECT_EQ (box->getText(), "1000 ms");
    EXPECT_TRUE (box->isEditableOnSingleClick() || box->isEditableOnDoubleClick());
    EXPECT_TRUE (panel().tapButton.isVisible());

    panel().syncButton.setToggleState (true, juce::sendNotificationSync);
    EXPECT_EQ (box->getText(), "1/16D");
    EXPECT_FALSE (box->isEditableOnSingleClick() || box->isEditableOnDoubleClick());
    EXPECT_FALSE (panel().tapButton.isVisible());

    // From the host the text follows as soon as the message loop has run.
    parameter ("sync").setValueNotifyingHost (0.0f);
    pump (20);
    EXPECT_EQ (box->getText(), "1000 ms");
    EXPECT_TRUE (panel().tapButton.isVisible());

    // A panel opened with sync on starts without tap and with a read-only text.
    parameter ("sync").setValueNotifyingHost (1.0f);
    closeEditor();
    openEditor();
    EXPECT_FALSE (panel().tapButton.isVisible());
    EXPECT_EQ (textBoxOf (*dynamic_cast<juce::Slider*> (control ("time")))->getText(), "1/16D");
}

TEST_F (EditorFixture, FourTapsSetTheTimeOfABarAtTheTappedTempo)
{
    struct Case { std::vector<juce::uint32> stamps; const char* text; float timeMs; };
    const Case cases[] = {
        { { 1000, 1500, 2000, 2500 }, "TAP\n120\nBPM", 2000.0f },
        { { 0, 333, 667, 1000 }, "TAP\n180\nBPM", 1333.0f },
        // The millisecond counter wraps between two taps.
        { { 0xffffff00u, 0x0000003cu, 0x00000178u, 0x000002b4u }, "TAP\n190\nBPM", 1264.0f },
        // Slower than 745 ms a beat asks for more than the range: `time` stays at its top.
        { { 0, 1000, 2000, 3000 }, "TAP\n60\nBPM", 2980.0f },
    };
    openEditor();
    auto& tap = panel().tapButton;
    EXPECT_EQ (tap.getTapText(), "TAP\nYour\nBPM");
    for (const auto& c : cases)
    {
        const auto before = tap.getTapText();
        for (size_t i = 0; i < 3; ++i)
        {
            tap.addTap (c.stamps[i]);
            EXPECT_EQ (tap.getTapText(), before); // the first three taps show the old value
        }
        tap.addTap (c.stamps[3]);
        EXPECT_EQ (tap.getTapText(), c.text);
        pump (60); // the panel's timer writes the time
        EXPECT_FALSE (tap.hasNewTapInterval());
        EXPECT_EQ (processor().parameters.getRawParameterValue ("time")->load(), c.timeMs) << c.text;
    }
}
