// SPDX-License-Identifier: AGPL-3.0-or-later
// Each gesture on the panel is one undo step; the toolbar counts the stored edits, undoes, redoes and
// can drop all of them to return to the preset as loaded.
#include "BrowserFixture.h"

TEST_F (BrowserFixture, EveryGestureIsOneUndoStep)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", "0.5" } });
    openEditor();
    manager().selectPreset (0);
    auto& undo = processor().undoManager;
    ASSERT_FALSE (undo.canUndo());

    const char* ids[] = { "volume", "noise", "tilt", "ws" };
    const auto values = [&]
    {
        std::vector<float> v;
        for (const auto* id : ids)
            v.push_back (plainValue (id));
        return v;
    };
    std::vector<std::vector<float>> history { values() };
    auto& sliders = panel().sliders;

    // An arrow key on the volume knob, delivered as the window does: key listeners before the slider.
    auto& volume = *sliders[(size_t) ParameterIndex::volume];
    const juce::KeyPress up (juce::KeyPress::upKey);
    panel().undoGestures.keyPressed (up, &volume);
    EXPECT_TRUE (volume.keyPressed (up));
    history.push_back (values());

    // A value typed into a knob (the framework brackets it like a short drag).
    auto& noise = *sliders[(size_t) ParameterIndex::noise];
    {
        const juce::Slider::ScopedDragNotification typed (noise);
        noise.setValue (0.3, juce::sendNotificationSync);
    }
    history.push_back (values());

    // A drag from press to release through many values; the state may flush in the middle of it.
    auto& tilt = *sliders[(size_t) ParameterIndex::tilt];
    {
        const juce::Slider::ScopedDragNotification drag (tilt);
        for (const double v : { 0.1, 0.2, -0.4, 0.5 })
        {
            tilt.setValue (v, juce::sendNotificationSync);
            processor().parameters.copyState();
        }
    }
    history.push_back (values());

    // A click on a switch.
    click (panel().wsButton);
    history.push_back (values());
    tick();

    for (size_t i = 0; i + 1 < history.size(); ++i)
        ASSERT_NE (history[i], history[i + 1]) << "every gesture changed something";

    for (size_t step = history.size() - 1; step > 0; --step)
    {
        SCOPED_TRACE (step);
        EXPECT_TRUE (undo.canUndo());
        click (toolbar().undoArea);
        EXPECT_EQ (values(), history[step - 1]);
    }
    EXPECT_FALSE (undo.canUndo());

    for (size_t step = 1; step < history.size(); ++step)
    {
        click (toolbar().redoArea);
        EXPECT_EQ (values(), history[step]);
    }
    EXPECT_FALSE (undo.canRedo());

    // Loading a preset starts a new history.
    click (toolbar().undoArea);
    manager().selectPreset (0);
    EXPECT_FALSE (undo.canUndo());
    EXPECT_FALSE (undo.canRedo());
}

TEST_F (BrowserFixture, ModificationCountFollowsTheHistoryAndTheLabelReturnsToTheOriginal)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", "0.5" } });
    openEditor();
    manager().selectPreset (0);
    auto& undo = processor().undoManager;
    auto& tb = toolbar();
    const auto loaded = processor().parameters.copyState();

    tick();
    EXPECT_EQ (tb.modificationsLabel.getText(), "mods 0");
    EXPECT_EQ (tb.statusLabel.getText(), "original");
    EXPECT_FALSE (manager().getCurrentProgram().isModified) << "loaded values are no edits";

    // Knob moves until the stored history is worth one modification; a smaller history still reads "original".
    const int ids[] = { ParameterIndex::volume, ParameterIndex::noise, ParameterIndex::tilt, ParameterIndex::timbre,
                        ParameterIndex::attack, ParameterIndex::sustain };
    int moves = 0;
    while (undo.getNumberOfUnitsTakenUpByStoredCommands() < tb.unitsPerModification && moves < 6)
    {
        EXPECT_EQ (tb.statusLabel.getText(), "original");
        auto& slider = *panel().sliders[(size_t) ids[moves++]];
        slider.setValue (slider.getMinimum() + 0.37 * (slider.getMaximum() - slider.getMinimum()), juce::sendNotificationSync);
        tick();
    }
    ASSERT_GE (undo.getNumberOfUnitsTakenUpByStoredCommands(), 90);
    EXPECT_EQ (tb.statusLabel.getText(), "edited");
    const auto count = tb.modificationsLabel.getText();
    EXPECT_NE (count, "mods 0");
    EXPECT_TRUE (manager().getCurrentProgram().isModified);

    // One undo does not lower the count: it counts the stored history.
    click (tb.undoArea);
    tick();
    EXPECT_EQ (tb.modificationsLabel.getText(), count);

    // The status label drops every edit: the preset's values come back and neither undo nor redo remains.
    tb.statusLabel.onClick();
    tick();
    EXPECT_EQ (tb.statusLabel.getText(), "original");
    EXPECT_EQ (tb.modificationsLabel.getText(), "mods 0");
    EXPECT_FALSE (undo.canUndo());
    EXPECT_FALSE (undo.canRedo());
    EXPECT_TRUE (manager().getCurrentProgram().isModified) << "update stays offered until the next load";
    for (const auto& row : parameterTable)
        EXPECT_FLOAT_EQ (plainValue (row.id), (float) loaded.getChildWithProperty ("id", row.id)["value"]) << row.id;

    // With an empty history the label changes nothing.
    tb.statusLabel.onClick();
    EXPECT_EQ (tb.statusLabel.getText(), "original");
    EXPECT_FLOAT_EQ (plainValue ("volume"), 0.5f);
}
