// SPDX-License-Identifier: AGPL-3.0-or-later
// The layer is see-through so that each line stands over the part of the browser it explains.
#include "presets/PresetsHelpPanel.h"

namespace velkaro
{
PresetsHelpPanel::PresetsHelpPanel()
{
    filterHelp.setText ("Multi-select items to filter the list of presets. Alt, Ctrl, Cmd and Esc keys can be used.",
                        juce::dontSendNotification);
    filterHelp.setJustificationType (juce::Justification::centred);
    filterHelp.setFont (juce::FontOptions (24.0f));

    tableHelp.setText ("Double click on cells to edit", juce::dontSendNotification);
    tableHelp.setJustificationType (juce::Justification::centred);
    tableHelp.setFont (juce::FontOptions (24.0f));

    autoloadHelp.setText ("Select to load the currently selected preset in the table ->", juce::dontSendNotification);
    autoloadHelp.setJustificationType (juce::Justification::centredRight);

    closeButton.onClick = [this] { toggle(); };

    addAndMakeVisible (filterHelp);
    addAndMakeVisible (tableHelp);
    addAndMakeVisible (autoloadHelp);
    addAndMakeVisible (closeButton);

    setWantsKeyboardFocus (true);
    addKeyListener (this);
}

PresetsHelpPanel::~PresetsHelpPanel()
{
    removeKeyListener (this);
}

void PresetsHelpPanel::toggle()
{
    if (isVisible())
        fadePanelOut (*this, fadeMs);
    else
        fadePanelIn (*this, fadeMs);
}

void PresetsHelpPanel::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colour (0xc0008080));
}

void PresetsHelpPanel::resized()
{
    const auto w = getWidth(), h = getHeight();
    const auto c = juce::jmin (w, w / 5);
    const auto s = juce::jmin (h, stripHeight);

    filterHelp.setBounds (2, 0, juce::jmax (c - 4, 0), h);

    const auto closeWidth = closeButton.getBestWidthForHeight (s) + 4;
    closeButton.setBounds (juce::Rectangle<int> (w - closeWidth, 0, closeWidth, s).withTrimmedTop (2).withTrimmedLeft (2).withTrimmedBottom (2));

    autoloadHelp.setBounds (c + margin, 0, juce::jmax (w - c - closeWidth - 2 * margin, 0), s);
    tableHelp.setBounds (c, s, w - c, h - s);
}

bool PresetsHelpPanel::keyPressed (const juce::KeyPress& key, juce::Component*)
{
    if (! isPlainEscape (key))
        return false;

    toggle();
    return true;
}
} // namespace velkaro
