// SPDX-License-Identifier: AGPL-3.0-or-later
// All display of the editing state runs on the toolbar's timer, so edits from the host, from MIDI and
// from the panel are shown alike.
#include "presets/PresetsToolbar.h"

#include "presets/PresetColours.h"

namespace velkaro
{
PresetsToolbar::PresetsToolbar (PresetManager& presetManager, juce::UndoManager* undoManagerToUse)
    : programPanel (presetManager), presetsPanel (presetManager), manager (presetManager), undoManager (undoManagerToUse)
{
    manager.onPresetChange = [this] (const Preset* preset)
    {
        if (preset == nullptr)
            nameButton.setButtonText ("failed!");
        else if (preset->name != nameButton.getButtonText())
            nameButton.setButtonText (preset->name);
        wake();
    };
    manager.onProgramModified = [this] { wake(); };

    nameButton.setButtonText (manager.getCurrentProgram().name);
    nameButton.onClick = [this] { presetsPanel.toggle(); };
    nextButton.onClick = [this] { manager.selectNext(); };
    previousButton.onClick = [this] { manager.selectPrevious(); };
    saveButton.onClick = [this] { programPanel.toggle(); };

    undoArea.setTooltip ("Undo");
    undoArea.onClick = [this] { undoClicked(); };
    redoArea.setTooltip ("Redo or see number of modifications");
    redoArea.onClick = [this] { redoClicked(); };

    modificationsLabel.setText ("mods 0", juce::dontSendNotification);
    modificationsLabel.setJustificationType (juce::Justification::centredLeft);

    statusLabel.setText ("original", juce::dontSendNotification);
    statusLabel.setTooltip ("Warning! Click here to delete all modifications. Use Undo to go back without loosing them.");
    statusLabel.setJustificationType (juce::Justification::centredTop);
    statusLabel.setColour (juce::Label::backgroundColourId,
                           getLookAndFeel().findColour (juce::Label::textColourId).contrasting (0.9f).withAlpha ((juce::uint8) 0x80));
    statusLabel.onClick = [this] { deleteAllModifications(); };

    // A save after a reload leaves the browser's rows and pending edits pointing at the new records.
    programPanel.reloadLibrary = [this] { presetsPanel.reloadLibraryKeepingEdits(); };

    addAndMakeVisible (nameButton);
    addAndMakeVisible (nextButton);
    addAndMakeVisible (previousButton);
    addAndMakeVisible (saveButton);
    addAndMakeVisible (undoArea);
    addAndMakeVisible (redoArea);
    addAndMakeVisible (modificationsLabel);
    addAndMakeVisible (statusLabel);

    if (undoManager != nullptr)
        undoManager->addChangeListener (this);
    presetsPanel.addComponentListener (this);
    startTimer (timerMs);
}

PresetsToolbar::~PresetsToolbar()
{
    stopTimer();
    if (undoManager != nullptr)
        undoManager->removeChangeListener (this);
    presetsPanel.removeComponentListener (this);
    // The manager outlives every editor.
    manager.onPresetChange = [] (const Preset*) {};
    manager.onProgramModified = [] {};
}

int PresetsToolbar::getModificationCount()
{
    if (undoManager == nullptr)
        return 0;
    // The history's change message may still be queued (an edit flushed just now): take it first.
    undoManager->dispatchPendingMessages();
    if (historyChanged)
    {
        // Each gesture opens a transaction of its own, and the framework's stored units say nothing of
        // how many there are (one parameter write is one action of some tens of units): count them.
        historyChanged = false;
        modificationCount = undoManager->getUndoDescriptions().size() + undoManager->getRedoDescriptions().size();
    }
    return modificationCount;
}

bool PresetsToolbar::updateUndoColour (bool force)
{
    if (undoManager == nullptr)
        return false;

    const bool showOn = undoManager->canUndo();
    if (showOn == undoShowsOnColour && ! force)
        return false;
    undoShowsOnColour = showOn;
    undoArea.setColour (juce::TextButton::buttonColourId,
                        getLookAndFeel().findColour (showOn ? juce::TextButton::buttonOnColourId : juce::TextButton::buttonColourId));
    undoArea.repaint();
    return true;
}

void PresetsToolbar::changeListenerCallback (juce::ChangeBroadcaster*)
{
    historyChanged = true;
    wake();
}

void PresetsToolbar::wake()
{
    if (! isTimerRunning())
        startTimer (timerMs);
}

void PresetsToolbar::timerCallback()
{
    bool quiet = true;
    if (undoManager != nullptr && undoManager->isPerformingUndoRedo())
        quiet = false;
    else if (undoManager != nullptr)
    {
        const auto mods = getModificationCount();
        if (mods != shownModifications)
        {
            shownModifications = mods;
            modificationsLabel.setText ("mods " + juce::String (mods), juce::dontSendNotification);
            statusLabel.setText (mods != 0 ? "edited" : "original", juce::dontSendNotification);
            quiet = false;
        }
        if (updateUndoColour())
            quiet = false;

        if (mods >= 1)
        {
            if (manager.getCurrentProgram().edited.isValid() && ! manager.isModified())
            {
                manager.setModified (true);
                quiet = false;
            }
        }
        else if (manager.isModified() || ! manager.getCurrentProgram().edited.isValid())
        {
            // A new program (no baseline yet) or an edit that left no history: take the state as it is now.
            manager.rebaseline();
            quiet = false;
        }
    }

    // Saving a program is not offered while the browser is open.
    const bool canSave = ! presetsPanel.isVisible();
    if (saveOffered != (int) canSave)
    {
        saveOffered = (int) canSave;
        saveButton.setEnabled (canSave);
        quiet = false;
    }

    if (quiet)
        stopTimer();
}

void PresetsToolbar::undoClicked()
{
    if (undoManager == nullptr)
        return;
    if (undoManager->canUndo())
        undoManager->undo();
    updateUndoColour();
}

void PresetsToolbar::redoClicked()
{
    if (undoManager != nullptr && undoManager->canRedo())
        undoManager->redo();
}

void PresetsToolbar::deleteAllModifications()
{
    if (undoManager == nullptr || undoManager->isPerformingUndoRedo())
        return;

    // The last gesture may not have reached the tree yet; it must be in the history to be undone.
    manager.getState().copyState();

    const auto mods = getModificationCount();
    for (int i = 0; i < mods + 1; ++i)
    {
        if (! undoManager->canUndo())
            break;
        undoManager->undo();
    }

    updateUndoColour();
    statusLabel.setText ("original", juce::dontSendNotification);
    manager.rebaseline();
    undoManager->clearUndoHistory();
}

void PresetsToolbar::parentHierarchyChanged()
{
    auto* parent = getParentComponent();
    // Every change further up arrives here too; the panels are set up only when the toolbar gets a new parent.
    if (parent == nullptr || presetsPanel.getParentComponent() == parent)
        return;

    parent->addAndMakeVisible (presetsPanel);
    presetsPanel.toggle();
    parent->addChildComponent (programPanel);
    programPanel.setVisible (false);
    layOutPanels();
}

void PresetsToolbar::parentSizeChanged()
{
    layOutPanels();
}

void PresetsToolbar::layOutPanels()
{
    auto* parent = getParentComponent();
    if (parent == nullptr)
        return;

    const auto w = parent->getWidth(), h = parent->getHeight();
    programPanel.setBounds (0, 0, w, h);
    presetsPanel.setBounds (0, 0, w, juce::jmin (h, getY()));
}

void PresetsToolbar::resized()
{
    const auto w = getWidth(), fullHeight = getHeight();
    const auto h = juce::jmax (fullHeight, 0);
    const auto halfHeight = juce::jmax (fullHeight / 2 + 1, 0);

    nameButton.setBounds (1, 0, juce::jmax (w - 227, 0), h);
    previousButton.setBounds (w - 224, 0, 27, h);
    nextButton.setBounds (w - 195, 0, 27, h);
    saveButton.setBounds (w - 166, 0, 35, h);
    undoArea.setBounds (w - 129, 0, 24, halfHeight);
    redoArea.setBounds (w - 103, 0, 24, halfHeight);
    modificationsLabel.setBounds (w - 77, 0, 76, halfHeight);

    const auto undoRedo = undoArea.getBounds().getUnion (redoArea.getBounds());
    statusLabel.setBounds (undoRedo.getX(), fullHeight / 2 + 1 + undoRedo.getY(), undoRedo.getWidth(),
                           juce::jmax (fullHeight / 2, 1) - 1);
    statusLabel.setFont (juce::FontOptions (0.629f * (float) (fullHeight / 2 + 1)));
}

void PresetsToolbar::lookAndFeelChanged()
{
    auto& lookAndFeel = getLookAndFeel();
    updatePresetColours (lookAndFeel);

    const auto labelText = lookAndFeel.findColour (juce::Label::textColourId);
    const auto buttonColour = labelText.contrasting (0.9f).withAlpha ((juce::uint8) 0x33);
    for (auto* button : { &nameButton, &nextButton, &previousButton, &saveButton })
        button->setColour (juce::TextButton::buttonColourId, buttonColour);
    statusLabel.setColour (juce::Label::textColourId, labelText);
    updateUndoColour (true);
}
} // namespace velkaro
