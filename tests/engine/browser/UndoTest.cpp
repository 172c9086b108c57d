// SPDX-License-Identifier: AGPL-3.0-or-later
// A run of edits on the panel: each gesture is one undo step and one modification, and the status label
// takes the state back to the preset as loaded, however long the run; closing the window loses nothing.
#include "BrowserFixture.h"

class UndoJourney : public BrowserFixture
{
protected:
    // The gestures a user makes, in turn: a drag through several values, a click on a switch, an arrow key
    // on a knob (delivered as the window does: key listeners before the slider).
    void gesture (int i)
    {
        const int knobs[] = { ParameterIndex::volume, ParameterIndex::noise, ParameterIndex::tilt, ParameterIndex::attack };
        auto& knob = *panel().sliders[(size_t) knobs[i % 4]];
        const juce::KeyPress up (juce::KeyPress::upKey);
        if (i % 3 == 1)
            return click (panel().wsButton);
        if (i % 3 == 2)
        {
            panel().undoGestures.keyPressed (up, &knob);
            ASSERT_TRUE (knob.keyPressed (up));
            return;
        }
        const juce::Slider::ScopedDragNotification drag (knob);
        for (const double position : { 0.9, 0.1, 0.3 + 0.02 * i })
        {
            knob.setValue (knob.proportionOfLengthToValue (position), juce::sendNotificationSync);
            processor().parameters.copyState(); // the state may flush in the middle of a drag
        }
    }

    juce::ValueTree state() { return processor().parameters.copyState(); }
};

TEST_F (UndoJourney, TheStatusLabelUndoesARunOfGesturesWhateverItsLength)
{
    writePreset ("a.xml", "Alpha", "Pad", "Ann", { { "volume", "0.5" } });
    openEditor();
    auto& undo = processor().undoManager;
    auto& tb = toolbar();

    for (const int gestures : { 1, 6, 20 })
    {
        SCOPED_TRACE (gestures);
        manager().selectPreset (0);
        tick();
        EXPECT_EQ (tb.modificationsLabel.getText(), "mods 0");
        EXPECT_EQ (tb.statusLabel.getText(), "original");
        EXPECT_FALSE (manager().getCurrentProgram().isModified) << "loaded values are no edits";

        std::vector<juce::ValueTree> history { state() };
        for (int i = 0; i < gestures; ++i)
        {
            gesture (i);
            history.push_back (state());
            ASSERT_FALSE (history[(size_t) i].isEquivalentTo (history.back())) << "gesture " << i << " changed something";
            tick();
            EXPECT_EQ (tb.modificationsLabel.getText(), "mods " + juce::String (i + 1));
        }
        EXPECT_EQ (tb.statusLabel.getText(), "edited");
        EXPECT_TRUE (manager().getCurrentProgram().isModified);

        // Undo goes back one gesture at a time without lowering the count; redo comes forward again.
        const auto steps = (size_t) std::min (gestures, 3);
        for (size_t step = 1; step <= steps; ++step)
        {
            click (tb.undoArea);
            EXPECT_TRUE (state().isEquivalentTo (history[history.size() - 1 - step])) << "undo " << step;
        }
        tick();
        EXPECT_EQ (tb.modificationsLabel.getText(), "mods " + juce::String (gestures));
        click (tb.redoArea);
        EXPECT_TRUE (state().isEquivalentTo (history[history.size() - steps]));
        while (undo.canRedo())
            click (tb.redoArea);

        // The label drops every edit: the preset as loaded, with neither undo nor redo left.
        release (tb.statusLabel);
        tick();
        EXPECT_TRUE (state().isEquivalentTo (history.front()));
        EXPECT_EQ (tb.statusLabel.getText(), "original");
        EXPECT_EQ (tb.modificationsLabel.getText(), "mods 0");
        EXPECT_FALSE (undo.canUndo() || undo.canRedo());
        EXPECT_TRUE (manager().getCurrentProgram().isModified) << "update stays offered until the next load";

        release (tb.statusLabel); // an empty history: nothing changes
        EXPECT_TRUE (state().isEquivalentTo (history.front()));
    }
}

TEST_F (UndoJourney, ReopeningTheEditorKeepsTheLoadedPresetItsTweaksAndItsHistory)
{
    for (const auto* name : { "Alpha", "Bravo", "Charlie" })
        writePreset (juce::String (name).toLowerCase() + ".xml", name, "Pad", "Ann");
    openEditor();
    click (toolbar().nextButton);
    click (toolbar().nextButton);
    gesture (0);
    gesture (1);
    const auto tweaked = state();

    closeEditor();
    openEditor();
    pump (300); // the toolbar shows the state once, then its timers sleep: a panel left alone does no work
    EXPECT_FALSE (toolbar().isTimerRunning() || panel().isTimerRunning());
    // Nor do the keyboard (the window's refresh looks at its notes) and the tooltips (no mouse over the panel).
    EXPECT_FALSE (((juce::Timer&) panel().keyboard).isTimerRunning());
    EXPECT_EQ (panel().tooltips.getWindow(), nullptr);
    EXPECT_TRUE (state().isEquivalentTo (tweaked));
    EXPECT_EQ (toolbar().nameButton.getButtonText(), "Bravo");
    EXPECT_EQ (toolbar().modificationsLabel.getText(), "mods 2");
    click (toolbar().saveButton);
    EXPECT_TRUE (programPanel().updateButton.isEnabled()) << "the tweaks can still be saved over Bravo";
    click (programPanel().closeButton);

    click (toolbar().undoArea);
    EXPECT_FALSE (state().isEquivalentTo (tweaked)) << "and still be undone";
    click (toolbar().nextButton);
    EXPECT_EQ (toolbar().nameButton.getButtonText(), "Charlie");
    EXPECT_FALSE (processor().undoManager.canUndo()) << "a load starts a new history";
    pump (300);
    gesture (0); // an edit made while the toolbar sleeps still shows
    pump (200);
    EXPECT_EQ (toolbar().modificationsLabel.getText(), "mods 1");
}
