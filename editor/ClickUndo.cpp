// SPDX-License-Identifier: AGPL-3.0-or-later
// The arrow stays square at the left; the text (a count of modifications) fills what is left.
#include "editor/ClickUndo.h"

#include "EditorData.h"

ClickUndo::ClickUndo (const juce::String& buttonName, Shape shape) : juce::TextButton (buttonName)
{
    if (shape == Shape::undo)
        icon.loadPathFromData (EditorData::undo_path, (size_t) EditorData::undo_pathSize);
    else
        icon.loadPathFromData (EditorData::redo_path, (size_t) EditorData::redo_pathSize);
}

void ClickUndo::paint (juce::Graphics& g)
{
    const float w = (float) getWidth(), h = (float) getHeight();

    auto base = findColour (juce::TextButton::buttonColourId);
    base = base.withMultipliedAlpha (hasKeyboardFocus (true) ? 1.4f : 0.9f);
    if (! isEnabled())
        base = base.withMultipliedAlpha (0.5f);
    base = base.brighter (isDown() ? 0.2f : 0.05f);

    g.setColour (base);
    g.fillRoundedRectangle (0.5f, 0.5f, w - 1.0f, h - 1.0f, 1.2f);
    g.setColour (getLookAndFeel().findColour (juce::ComboBox::outlineColourId));
    g.drawRoundedRectangle (0.5f, 0.5f, w - 1.0f, h - 1.0f, 1.2f, 1.0f);

    g.setFont (juce::FontOptions (juce::jmax (h - 1.0f, 1.0f)));
    auto textColour = base.brighter (0.9f);
    if (getToggleState() || isDown())
        textColour = findColour (getToggleState() ? juce::TextButton::textColourOnId : juce::TextButton::textColourOffId)
                         .withMultipliedAlpha (isEnabled() ? 1.0f : 0.5f);
    g.setColour (textColour);

    if (! icon.isEmpty() && h > 2.0f)
        g.fillPath (icon, icon.getTransformToScaleToFit (2.0f, 1.0f, h - 2.0f, h - 2.0f, true));

    const int textLeft = getHeight() - 2;
    g.drawFittedText (getButtonText(), textLeft, 0, getWidth() - textLeft, getHeight(), juce::Justification::centredRight, 1);
}
