// SPDX-License-Identifier: AGPL-3.0-or-later
// A tree selection refilters the table at once; "save changes" writes every pending edit and shows the
// whole library again.
#include "presets/PresetsPanel.h"

#include <optional>
#include <utility>

#include "presets/PresetColours.h"

namespace velkaro
{
namespace
{
constexpr const char* unsavedText = "<<< Unsaved changes will be lost";
} // namespace

PresetsPanel::PresetsPanel (PresetManager& presetManager)
    : filterTree (presetManager), table (presetManager), manager (presetManager)
{
    updatePresetColours (getLookAndFeel());

    saveChangesButton.setColour (juce::TextButton::buttonColourId, juce::Colours::darkgreen);
    saveChangesButton.setColour (juce::TextButton::textColourOffId, juce::Colours::white);
    saveChangesButton.setEnabled (false);
    saveChangesButton.onClick = [this] { saveChanges(); };

    unsavedLabel.setText (unsavedText, juce::dontSendNotification);
    unsavedLabel.setColour (juce::Label::outlineColourId, juce::Colours::transparentBlack);
    unsavedLabel.setColour (juce::Label::textColourId, findColour (presetPendingTextColourId));

    titleLabel.setText ("Bulk Edit Preset Info", juce::dontSendNotification);
    titleLabel.setJustificationType (juce::Justification::centred);
    titleLabel.setFont (juce::FontOptions (0.8f * (float) stripHeight));

    autoloadToggle.setToggleState (true, juce::dontSendNotification);
    autoloadToggle.onClick = [this] { table.autoload = autoloadToggle.getToggleState(); };
    table.autoload = true;

    helpButton.onClick = [this] { help.toggle(); };
    closeButton.onClick = [this] { toggle(); };

    table.onEdit = [this]
    {
        saveChangesButton.setEnabled (true);
        unsavedLabel.setVisible (true);
    };

    filterTree.onTypeFilterChanged = [this] (bool selected, juce::String& value)
    {
        if (selected)
            filter.types.insert (value);
        else
            filter.types.erase (value);
        filterChanged();
    };
    filterTree.onAuthorFilterChanged = [this] (bool selected, juce::String& value)
    {
        if (selected)
            filter.authors.insert (value);
        else
            filter.authors.erase (value);
        filterChanged();
    };

    addAndMakeVisible (saveChangesButton);
    addChildComponent (unsavedLabel);
    addAndMakeVisible (titleLabel);
    addAndMakeVisible (autoloadToggle);
    addAndMakeVisible (helpButton);
    addAndMakeVisible (closeButton);
    addAndMakeVisible (filterTree);
    addAndMakeVisible (table);
    addChildComponent (help);

    // Listening starts with help already hidden, so the title stays opaque until help is first shown.
    help.addComponentListener (this);

    setWantsKeyboardFocus (true);
    addKeyListener (this);
}

PresetsPanel::~PresetsPanel()
{
    help.removeComponentListener (this);
    removeKeyListener (this);
}

void PresetsPanel::refreshRows()
{
    rows = manager.getPresets();
    table.rows = rows;
    table.table.updateContent();
}

void PresetsPanel::filterChanged()
{
    manager.setFilter (filter);
    refreshRows();
    table.table.repaint();
}

void PresetsPanel::saveChanges()
{
    for (const auto& [preset, pending] : table.edits)
    {
        auto info = preset->getInfo();
        if (pending.name.isNotEmpty())
            info.name = pending.name;
        if (pending.author.isNotEmpty())
            info.author = pending.author;
        if (pending.type.isNotEmpty())
            info.type = pending.type;
        if (pending.notes.isNotEmpty())
            info.notes = pending.notes;
        preset->updateInfoAndSave (info);
    }
    table.edits.clear();

    manager.reload();

    saveChangesButton.setEnabled (false);
    unsavedLabel.setVisible (false);

    // The whole library is shown again.
    manager.setFilter (PresetFilter {});
    refreshRows();

    rebuildFilterTree();
    filterTree.repaint();
}

void PresetsPanel::rebuildFilterTree()
{
    // The rebuilt tree marks no row, so the panel's choice goes with it: the next click starts a new
    // filter instead of bringing back values that no row shows as chosen.
    filterTree.reload();
    filter = {};
}

void PresetsPanel::reloadLibraryKeepingEdits()
{
    std::vector<std::pair<juce::File, PresetInfo>> pending;
    for (const auto& [preset, info] : table.edits)
        if (preset->file != juce::File())
            pending.emplace_back (preset->file, info);
    table.edits.clear();

    manager.reload();

    // Edits of presets outside the list in force must survive too, so look through the whole library.
    const auto activeFilter = manager.hasActiveFilter() ? std::optional<PresetFilter> (manager.getActiveFilter()) : std::nullopt;
    if (activeFilter.has_value())
        manager.setFilter (PresetFilter {});

    for (auto* preset : manager.getPresets())
        for (const auto& [file, info] : pending)
            if (preset->file == file)
                table.edits[preset] = info;

    if (activeFilter.has_value())
        manager.setFilter (*activeFilter);

    refreshRows();
}

void PresetsPanel::toggle()
{
    if (isVisible())
    {
        if (help.isVisible())
            help.toggle();
        fadePanelOut (*this, fadeMs);
        return;
    }

    rebuildFilterTree();
    refreshRows();
    fadePanelIn (*this, fadeMs);
}

void PresetsPanel::paint (juce::Graphics& g)
{
    updatePresetColours (getLookAndFeel());
    // The default look-and-feel is installed after this panel is built, without telling it.
    unsavedLabel.setColour (juce::Label::textColourId, findColour (presetPendingTextColourId));

    const auto fill = findColour (presetPanelFillColourId);
    g.fillAll (fill);
    g.setColour (fill.darker (0.4f));
    g.fillRect (0, getHeight() - 3, getWidth(), 3);
    g.setColour (findColour (presetPanelEdgeColourId));
    g.fillRect (0, 0, getWidth(), stripHeight);
}

void PresetsPanel::resized()
{
    const auto w = getWidth(), h = getHeight();
    const auto s = juce::jmin (h, stripHeight);
    const auto c = juce::jmin (w, w / 5);

    filterTree.setBounds (2, s, juce::jmax (c - 4, 0), juce::jmax (h - s, 0));
    table.setBounds (c, s, w - c, h - s);
    titleLabel.setBounds ((w - w / 3) / 2, 0, w / 3, s);

    const auto b = juce::jmin (w, saveChangesButton.getBestWidthForHeight (s));
    saveChangesButton.setBounds (2, 2, juce::jmax (b - 4, 0), juce::jmax (s - 4, 0));

    const juce::Font unsavedFont (juce::FontOptions (0.6f * (float) stripHeight));
    unsavedLabel.setFont (unsavedFont);
    const auto unsavedWidth = juce::GlyphArrangement::getStringWidthInt (unsavedFont, juce::String (" ") + unsavedText + " ") - 4;
    unsavedLabel.setBounds (b + 2, 2, juce::jmax (juce::jmin (unsavedWidth, w - (b + 2)), 0), s - 4);

    // From the right: close, help, then the autoload toggle, each as wide as its text plus 4.
    const auto inset = [] (juce::Rectangle<int> slot) { return slot.withTrimmedTop (2).withTrimmedLeft (2).withTrimmedBottom (2); };

    const auto closeWidth = closeButton.getBestWidthForHeight (s) + 4;
    closeButton.setBounds (inset ({ w - closeWidth, 0, closeWidth, s }));

    const auto helpWidth = helpButton.getBestWidthForHeight (s) + 4;
    helpButton.setBounds (inset ({ w - closeWidth - helpWidth, 0, helpWidth, s }));

    autoloadToggle.setSize (autoloadToggle.getWidth(), juce::jmax (s - 4, 0));
    autoloadToggle.changeWidthToFitText();
    const auto autoloadWidth = autoloadToggle.getWidth() + 4;
    autoloadToggle.setBounds (inset ({ w - closeWidth - helpWidth - autoloadWidth, 0, autoloadWidth, s }));

    help.margin = autoloadWidth + helpWidth;
    help.setBounds (0, 0, w, h);
    help.resized();
}

void PresetsPanel::lookAndFeelChanged()
{
    updatePresetColours (getLookAndFeel());
    unsavedLabel.setColour (juce::Label::textColourId, findColour (presetPendingTextColourId));
}

bool PresetsPanel::keyPressed (const juce::KeyPress& key, juce::Component*)
{
    if (! isPlainEscape (key))
        return false;

    toggle();
    return true;
}

void PresetsPanel::componentVisibilityChanged (juce::Component& component)
{
    if (&component == &help)
        titleLabel.setAlpha (help.isVisible() ? 229.0f / 255.0f : 0.0f);
}
} // namespace velkaro
