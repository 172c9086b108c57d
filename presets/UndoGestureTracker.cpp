// SPDX-License-Identifier: AGPL-3.0-or-later
// The parameter attachments bracket every change from the panel with a gesture, and the parameter
// tree only hears of a change at its next flush; so a gesture first flushes what the previous one left
// pending, then opens the new transaction that its own changes will join.
#include "presets/UndoGestureTracker.h"

namespace velkaro
{
UndoGestureTracker::UndoGestureTracker (juce::AudioProcessorValueTreeState& stateToUse, juce::UndoManager& undoManagerToUse)
    : state (stateToUse), undoManager (undoManagerToUse)
{
    for (auto* parameter : state.processor.getParameters())
        parameter->addListener (this);
}

UndoGestureTracker::~UndoGestureTracker()
{
    for (auto* parameter : state.processor.getParameters())
        parameter->removeListener (this);
}

void UndoGestureTracker::parameterGestureChanged (int, bool gestureIsStarting)
{
    // Gestures that a host or another thread might start belong to nobody's undo history.
    if (! gestureIsStarting || ! juce::MessageManager::existsAndIsCurrentThread())
        return;
    if (undoManager.isPerformingUndoRedo())
        return;

    state.copyState(); // flushes the parameters into the tree; the copy itself is not needed
    undoManager.beginNewTransaction();
}
} // namespace velkaro
