// SPDX-License-Identifier: AGPL-3.0-or-later
// Every control of the panel stands where the layout puts it, carries its name and tooltip, and
// moves its parameter both ways; switches dim their modules; sync and tap act on `time`.
#include "editor/ControlHelp.h"
#include "EditorFixture.h"

namespace
{
struct Placement
{
    const char* id;
    juce::Rectangle<int> bounds;
    const char* label; // nullptr: no visible name label
};

// The panel at 880 px: position and size of each control, and the name shown above it.
const Placement placements[] = {
    { "octave", { 32, 81, 82, 82 }, "8va mix" },      { "bp1", { 12, 32, 20, 20 }, nullptr },
    { "up", { 134, 103, 40, 40 }, nullptr },          { "fdbk", { 228, 81, 82, 82 }, "repeats" },
    { "bp2", { 208, 32, 20, 20 }, nullptr },          { "time", { 385, 53, 110, 134 }, "size" },
    { "rev", { 321, 32, 40, 20 }, nullptr },          { "rate", { 570, 81, 82, 106 }, "rate" },
    { "bp3", { 550, 32, 20, 20 }, nullptr },          { "pre", { 594, 32, 30, 20 }, nullptr },
    { "tilt", { 701, 103, 56, 56 }, "tilt EQ" },      { "drywet", { 766, 81, 82, 82 }, "dry/wet" },
    { "squeezeit", { 193, 204, 152, 38 }, "squeezeit" }, { "fmit", { 193, 242, 152, 38 }, nullptr },
    { "revmix", { 412, 242, 56, 56 }, "wet mix" },    { "flangerit", { 535, 242, 152, 38 }, "flangerit" },
    { "sync", { 428, 187, 24, 24 }, nullptr },        { "tap", { 453, 185, 32, 28 }, nullptr },
    { "pitch", { 24, 332, 62, 62 }, "ratio" },        { "timbre", { 109, 332, 62, 62 }, "timbre" },
    { "noise", { 194, 332, 62, 62 }, "noise" },       { "envmod", { 279, 332, 62, 62 }, "env mod" },
    { "attack", { 364, 332, 62, 62 }, "attack" },     { "decay", { 449, 332, 62, 62 }, "decay" },
    { "sustain", { 534, 332, 62, 62 }, "sustain" },   { "release", { 619, 332, 62, 62 }, "release" },
    { "vibrato", { 704, 332, 62, 62 }, "vibrato" },   { "volume", { 789, 332, 62, 62 }, "volume" },
    { "reverb", { 790, 242, 56, 56 }, "reverb" },     { "ws", { 173, 373, 19, 19 }, nullptr },
};

juce::Label* textBoxOf (juce::Slider& slider)
{
    for (auto* child : slider.getChildren())
        if (auto* label = dynamic_cast<juce::Label*> (child))
            return label;
    return nullptr;
}

juce::Label* visibleLabelAt (juce::Component& panel, juce::Rectangle<int> bounds)
{
    for (auto* child : panel.getChildren())
        if (auto* label = dynamic_cast<velkaro::NameDisplay*> (child))
            if (label->getBounds() == bounds && label->isVisible())
                return label;
    return nullptr;
}
} // namespace

TEST_F (EditorFixture, EveryControlStandsInItsPlaceWithItsNameAndTooltip)
{
    openEditor();
    for (const auto& p : placements)
    {
        SCOPED_TRACE (p.id);
        auto* c = control (p.id);
        ASSERT_NE (c, nullptr);
        EXPECT_EQ (c->getBounds(), p.bounds);
        EXPECT_TRUE (c->isVisible());
        auto* tip = dynamic_cast<juce::SettableTooltipClient*> (c);
        ASSERT_NE (tip, nullptr);
        EXPECT_EQ (tip->getTooltip(), getHelpFor (p.id));
        EXPECT_TRUE (tip->getTooltip().startsWith ("- "));
        if (p.label != nullptr)
        {
            auto labelBounds = p.bounds.withY (p.bounds.getY() - 24).withHeight (24);
            if (juce::String (p.id) == "revmix")
                labelBounds = { 402, 218, 76, 24 };
            auto* label = visibleLabelAt (panel(), labelBounds);
            ASSERT_NE (label, nullptr);
            EXPECT_EQ (label->getText(), p.label);
        }
    }

    // envms is bound but hidden under fmit; fmit's own name never shows.
    auto* envms = dynamic_cast<juce::Slider*> (control ("envms"));
    ASSERT_NE (envms, nullptr);
    EXPECT_FALSE (envms->isVisible());
    EXPECT_EQ (visibleLabelAt (panel(), { 193, 218, 152, 24 }), nullptr);

    EXPECT_EQ (panel().amLabel.getText(), "AM");
    EXPECT_EQ (panel().amLabel.getBounds(), juce::Rectangle<int> (335, 204, 24, 38));
    EXPECT_EQ (panel().fmLabel.getBounds(), juce::Rectangle<int> (335, 242, 24, 38));
    EXPECT_EQ (panel().pictureButton.getBounds(), juce::Rectangle<int> (846, 404, 32, 12));
    EXPECT_EQ (panel().pictureButton.getTooltip(), "picture");
    EXPECT_EQ (panel().tooltipsButton.getBounds(), juce::Rectangle<int> (812, 404, 32, 12));
    EXPECT_EQ (panel().tooltipsButton.getTooltip(), "tooltips");
    EXPECT_EQ (panel().keyboard.getBounds(), juce::Rectangle<int> (14, 454, 852, 32));
    EXPECT_EQ (panel().brandBar.getBounds(), juce::Rectangle<int> (1, 428, 878, 24));
    EXPECT_EQ (panel().syncButton.getButtonText(), "T");
    EXPECT_EQ (panel().wsButton.getButtonText(), "WS");
    EXPECT_EQ (dynamic_cast<juce::Slider*> (control ("rate"))->getTextValueSuffix(), " hz");
}

TEST_F (EditorFixture, EveryControlMovesItsParameterAndFollowsTheHost)
{
    openEditor();
    for (const auto& row : parameterTable)
    {
        SCOPED_TRACE (row.id);
        auto& param = parameter (row.id);
        auto* c = control (row.id);
        ASSERT_NE (c, nullptr);

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

TEST_F (EditorFixture, ModuleSwitchesDimTheirModules)
{
    struct Module { const char* switchId; std::vector<const char*> members; };
    const Module modules[] = {
        { "bp1", { "octave", "up" } },
        { "bp2", { "time", "fdbk", "revmix", "squeezeit", "fmit", "rev", "sync", "tap" } },
        { "bp3", { "rate", "flangerit", "pre" } },
    };
    openEditor();
    for (const auto& m : modules)
    {
        SCOPED_TRACE (m.switchId);
        for (const float value : { 0.0f, 1.0f, 0.0f })
        {
            // From the host, an automation or a preset: the attachment's notification dims too.
            parameter (m.switchId).setValueNotifyingHost (value);
            const float expected = value > 0.5f ? 1.0f : 0.4f;
            for (const auto* id : m.members)
                EXPECT_NEAR (control (id)->getAlpha(), expected, 1e-6) << id;
            EXPECT_FLOAT_EQ (control (m.switchId)->getAlpha(), 1.0f);
        }
        // A dimmed control still writes its parameter.
        auto* first = dynamic_cast<juce::Slider*> (control (m.members[0]));
        first->setValue (first->getMaximum(), juce::sendNotificationSync);
        EXPECT_FLOAT_EQ (parameter (m.members[0]).getValue(), 1.0f);
    }
    // Controls of other modules and the AM / FM names never dim.
    parameter ("bp2").setValueNotifyingHost (0.0f);
    EXPECT_FLOAT_EQ (panel().amLabel.getAlpha(), 1.0f);
    EXPECT_FLOAT_EQ (control ("drywet")->getAlpha(), 1.0f);
    EXPECT_FLOAT_EQ (control ("pitch")->getAlpha(), 1.0f);
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
    juce::MessageManager::getInstance()->runDispatchLoopUntil (20);
    EXPECT_EQ (box->getText(), "1000 ms");
    EXPECT_TRUE (panel().tapButton.isVisible());

    // A panel opened with sync on starts without tap and with a read-only text.
    parameter ("sync").setValueNotifyingHost (1.0f);
    closeEditor();
    openEditor();
    EXPECT_FALSE (panel().tapButton.isVisible());
    EXPECT_EQ (textBoxOf (*dynamic_cast<juce::Slider*> (control ("time")))->getText(), "1/16D");
}

TEST_F (EditorFixture, FourTapsWriteTheTimeOfTheirMeanInterval)
{
    struct Case { std::vector<juce::uint32> stamps; const char* text; float normalised; };
    const Case cases[] = {
        { { 1000, 1500, 2000, 2500 }, "TAP\n120\nBPM", (2000.0f - 40.0f) / 2940.0f },
        { { 0, 300, 700, 1000 }, "TAP\n180\nBPM", (1332.0f - 40.0f) / 2940.0f },
        // The millisecond counter wraps between two taps.
        { { 0xffffff00u, 0x0000003cu, 0x00000178u, 0x000002b4u }, "TAP\n190\nBPM", (1264.0f - 40.0f) / 2940.0f },
        // Slower than 745 ms a beat asks for more than the range: `time` stays at its top.
        { { 0, 1000, 2000, 3000 }, "TAP\n60\nBPM", 1.0f },
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
        EXPECT_TRUE (tap.hasNewTapInterval());
        panel().timerCallback();
        EXPECT_FALSE (tap.hasNewTapInterval());
        // The parameter keeps the written position, snapped to its whole milliseconds.
        auto& time = parameter ("time");
        EXPECT_FLOAT_EQ (time.getValue(), time.convertTo0to1 (time.convertFrom0to1 (c.normalised)));
    }
}

TEST_F (EditorFixture, TooltipsFollowTheirSwitchAndTheSetting)
{
    writeSettings ("<ALLSETTINGS><SETTING ID=\"glb_stt\" Value=\"0\"/></ALLSETTINGS>");
    openEditor();
    auto* knob = control ("drywet");
    EXPECT_FALSE (panel().tooltipsButton.getToggleState());
    EXPECT_EQ (panel().tooltipWindow.getTipFor (*knob), "");
    // The text stays set while the window is silent.
    EXPECT_EQ (dynamic_cast<juce::Slider*> (knob)->getTooltip(), getHelpFor ("drywet"));

    EXPECT_FALSE (panel().tooltipWindow.enabled);
    panel().tooltipsButton.setToggleState (true, juce::sendNotificationSync);
    EXPECT_TRUE (panel().tooltipWindow.enabled);
    closeEditor();

    GlobalSettings stored;
    stored.dataFolder = processor().dataFolder;
    stored.read();
    EXPECT_EQ (stored.showTooltips, 1);
}
