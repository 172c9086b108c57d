// SPDX-License-Identifier: AGPL-3.0-or-later
// Opens the editor in-process without a screen and writes PNG snapshots of it at several widths,
// one with a tooltip drawn where it would pop up, and one of the open preset browser with a pending
// edit, over a small library of its own. Usage: ondrivel-snapshot <output folder>
#include <cstdlib>

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_gui_basics/juce_gui_basics.h>

#include "core/KestruneAudioProcessor.h"
#include "editor/ControlHelp.h"
#include "editor/MainWindow.h"
#include "presets/Preset.h"

namespace
{
bool writePng (const juce::Image& image, const juce::File& file)
{
    file.deleteFile();
    juce::FileOutputStream stream (file);
    juce::PNGImageFormat png;
    return stream.openedOk() && png.writeImageToStream (image, stream);
}

juce::Image snapshotAt (juce::AudioProcessorEditor& editor, int width)
{
    editor.setSize (width, (int) ((float) width * MainWindow::aspect));
    return editor.createComponentSnapshot (editor.getLocalBounds(), true, 1.0f);
}

// Draws the tooltip of one control the way the tooltip window would show it beside the pointer.
void drawTooltipOver (juce::Image& image, juce::Component& control, float scale)
{
    auto& lf = juce::LookAndFeel::getDefaultLookAndFeel();
    auto* client = dynamic_cast<juce::TooltipClient*> (&control);
    const auto tip = client != nullptr ? client->getTooltip() : juce::String();
    const auto centre = (control.getBounds().getCentre().toFloat() * scale).toInt();
    const auto bounds = lf.getTooltipBounds (tip, centre, image.getBounds());
    juce::Image tipImage (juce::Image::ARGB, bounds.getWidth(), bounds.getHeight(), true);
    {
        juce::Graphics tg (tipImage);
        lf.drawTooltip (tg, tip, bounds.getWidth(), bounds.getHeight());
    }
    juce::Graphics g (image);
    g.drawImageAt (tipImage, bounds.getX(), bounds.getY());
}
// A few presets of several types and authors, made from the default state.
void writeExampleLibrary (juce::AudioProcessorValueTreeState& state)
{
    const velkaro::PresetInfo presets[] = { { "Glass Bells", "Ann", "Keys", "Struck glass over a slow swell." },
                                            { "Night Drone", "Bob", "Pad", "A low bed that breathes." },
                                            { "Rubber Bass", "Ann", "Bass", "Short and round." },
                                            { "Tin Choir", "", "Pad", "Voices through a tin can." },
                                            { "Soft Reed", "Cyd", "Lead", "A breathy reed for melodies." } };
    int number = 0;
    for (const auto& info : presets)
        if (const auto xml = velkaro::withInfo (info, state.copyState()).createXml())
            xml->writeTo (velkaro::PresetManager::presetFolder().getChildFile (juce::String::formatted ("%02d ", ++number) + info.name + ".xml"),
                          velkaro::Preset::fileFormat());
}

// The browser open over the panel, the second preset loaded and an author edited but not yet saved.
juce::Image presetsPanelSnapshot (MainWindow& panel)
{
    auto& toolbar = panel.presetsToolbar;
    toolbar.nameButton.onClick();
    toolbar.nextButton.onClick();
    auto& table = toolbar.presetsPanel.table;
    const auto now = juce::Time::getCurrentTime();
    table.cellDoubleClicked (3, velkaro::PresetsMetadataTable::authorColumn,
                             { juce::Desktop::getInstance().getMainMouseSource(), {}, {}, 0, 0, 0, 0, 0, &table.table, &table.table, now, {}, now, 2, false });
    if (auto* field = table.editor.getCurrentTextEditor())
    {
        field->setText ("Dee", false);
        table.editor.textEditorReturnKeyPressed (*field);
    }
    juce::Desktop::getInstance().getAnimator().cancelAllAnimations (true);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (100); // the tree lays out its rows
    return panel.createComponentSnapshot (panel.getLocalBounds(), true, 2.0f);
}
} // namespace

int main (int argc, char** argv)
{
    if (argc < 2)
    {
        std::fprintf (stderr, "usage: ondrivel-snapshot <output folder>\n");
        return 2;
    }
    const auto out = juce::File::getCurrentWorkingDirectory().getChildFile (argv[1]);
    out.createDirectory();
    // Keep the user's own settings and presets out of it.
    const auto home = out.getChildFile ("snapshot-home");
    home.createDirectory();
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);

    juce::ScopedJuceInitialiser_GUI gui;
    auto processor = std::make_unique<KestruneAudioProcessor>();
    velkaro::PresetManager::presetFolder().deleteRecursively();
    velkaro::PresetManager::presetFolder().createDirectory();
    writeExampleLibrary (processor->parameters);
    std::unique_ptr<juce::AudioProcessorEditor> editor (processor->createEditor());
    auto* panel = dynamic_cast<MainWindow*> (editor->getChildComponent (0));
    processor->presetManager.selectPreset (0);

    bool ok = true;
    for (const int width : { 440, 880, 1760 })
        ok = writePng (snapshotAt (*editor, width), out.getChildFile ("editor-" + juce::String (width) + ".png")) && ok;

    if (panel != nullptr)
    {
        auto image = snapshotAt (*editor, 880);
        drawTooltipOver (image, *panel->sliders[ParameterIndex::time], 1.0f);
        ok = writePng (image, out.getChildFile ("editor-880-tooltip.png")) && ok;

        // All modules switched in, the way a sound that uses the whole chain looks.
        for (const auto* id : { "bp1", "bp2", "bp3" })
            processor->parameters.getParameter (id)->setValueNotifyingHost (1.0f);
        ok = writePng (snapshotAt (*editor, 880), out.getChildFile ("editor-880-active.png")) && ok;
        ok = writePng (presetsPanelSnapshot (*panel), out.getChildFile ("presets-panel.png")) && ok;
    }

    editor.reset();
    processor.reset();
    std::printf ("%s\n", ok ? "snapshots written" : "some snapshots failed");
    return ok ? 0 : 1;
}
