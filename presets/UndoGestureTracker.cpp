// SPDX-License-Identifier: AGPL-3.0-or-later
// The framework's attachments report drags, wheel moves, text entry and clicks as parameter gestures;
// arrow keys on a slider are the one edit without a gesture, so those are watched as keys. The tree only
// hears of a change at its next flush, so a gesture first flushes what the previous one left pending.
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
    for (auto& component : watched)
        if (component != nullptr)
            component->removeKeyListener (this);

    for (auto* parameter : state.processor.getParameters())
        parameter->removeListener (this);
}

void UndoGestureTracker::watchKeysOf (juce::Component& root)
{
    for (auto* child : root.getChildren())
    {
        if (dynamic_cast<juce::Slider*> (child) != nullptr)
        {
            child->addKeyListener (this);
            watched.emplace_back (child);
        }
        watchKeysOf (*child);
    }
}

bool UndoGestureTracker::keyPressed (const juce::KeyPress&, juce::Component*)
{
    beginGesture();
    return false;
}

void UndoGestureTracker::beginGesture()
{
    if (undoManager.isPerformingUndoRedo())
        return;

    state.copyState(); // flushes the parameters into the tree; the copy itself is not needed
    undoManager.beginNewTransaction();
}

void UndoGestureTracker::parameterGestureChanged (int, bool gestureIsStarting)
{
    // Gestures that a host or another thread might start belong to nobody's undo history.
    if (gestureIsStarting && juce::MessageManager::existsAndIsCurrentThread())
        beginGesture();
}
} // namespace velkaro
