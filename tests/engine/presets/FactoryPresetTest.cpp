// SPDX-License-Identifier: AGPL-3.0-or-later
// The factory preset set as shipped: complete and described, loaded exactly, stored as the plug-in
// writes presets, exact through a host recall and audible; copied without replacing a user's file.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
juce::Array<juce::File> factoryFiles()
{
    auto files = juce::File (ONDRIVEL_FACTORY_PRESETS_DIR).findChildFiles (juce::File::findFiles, true, "*.xml");
    files.sort();
    return files;
}

// A chord held for a second and let ring for another: the RMS of both, NaN when a sample is not finite.
double chordRms (KestruneAudioProcessor& p)
{
    juce::MidiBuffer on, off;
    for (const int note : { 48, 55, 60, 64 })
    {
        on.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
        off.addEvent (juce::MidiMessage::noteOff (1, note), 0);
    }
    const double held = renderRms (p, 100, on, 512), ringing = renderRms (p, 100, off, 512);
    return std::sqrt ((held * held + ringing * ringing) / 2.0);
}
} // namespace

TEST (FactoryPresets, LoadExactlySurviveASaveAndAHostRecallAndSound)
{
    ScopedTempHome home;
    home.library().createDirectory();
    for (const auto& file : factoryFiles())
        file.copyFileTo (home.library().getChildFile (file.getFileName()));
    TestProcessor t (48000.0, 512), recalled;
    auto& p = *t.processor;
    auto& manager = p.presetManager;
    ASSERT_GE (factoryFiles().size(), 24);
    ASSERT_EQ ((int) manager.getNumPresets(), factoryFiles().size());
    int modifiedReports = 0;
    manager.onProgramModified = [&] { ++modifiedReports; };
    std::set<juce::String> names, types, authors;

    for (size_t i = 0; i < manager.getNumPresets(); ++i)
    {
        manager.selectPreset (i);
        const auto* preset = manager.getCurrentPreset();
        ASSERT_NE (preset, nullptr);
        SCOPED_TRACE (preset->name.toStdString());
        // Described for the browser: a unique name that is its file's, a type, an author, a helpful note.
        EXPECT_TRUE (names.insert (preset->name).second && preset->file.getFileNameWithoutExtension() == preset->name);
        EXPECT_TRUE (preset->type.isNotEmpty() && preset->author.isNotEmpty() && preset->notes.length() >= 80);
        types.insert (preset->type);
        authors.insert (preset->author);

        // Every value arrives as the file states it, in order, in range and on the parameter's grid, up to
        // float rounding.
        for (int n = 0; n < numParameters; ++n)
        {
            const float stated = preset->getChildElement (n + 1)->getStringAttribute ("value").getFloatValue();
            EXPECT_NEAR (p.getParameterValue (n), stated, 1e-6f * std::max (1.0f, std::abs (stated))) << parameterTable[n].id;
        }

        // The state holds the preset's text, so the host's copy brings back every value bit for bit.
        juce::MemoryBlock block;
        p.getStateInformation (block);
        recalled.processor->setStateInformation (block.getData(), (int) block.getSize());
        for (int n = 0; n < numParameters; ++n)
            EXPECT_EQ (recalled.processor->getParameterValue (n), p.getParameterValue (n)) << parameterTable[n].id;
        EXPECT_EQ (recalled.processor->presetManager.getCurrentProgram().name, preset->name);

        // Saved back under its own name, the file does not change: it is stored as the plug-in writes.
        const juce::String before = preset->file.loadFileAsString();
        const_cast<velkaro::Preset*> (preset)->updateInfoAndSave (preset->getInfo());
        EXPECT_EQ (preset->file.loadFileAsString(), before);

        p.setStateInformation (nullptr, 0); // silences the delay between presets, keeps the values
        p.prepareToPlay (48000.0, 512);
        EXPECT_GT (chordRms (p), 1e-3) << "finite and audible";
    }
    EXPECT_EQ (modifiedReports, 0) << "loading a factory preset is no edit";
    for (const char* type : { "Pad", "Keys", "Bass", "Pluck", "Lead", "Texture", "FX" })
        EXPECT_EQ (types.count (type), 1u) << type;
    EXPECT_GE (authors.size(), 3u);
}

TEST (FactoryPresets, FillALibraryWithPresetsOnlyInSubFoldersButNeverReplaceAUsersFile)
{
    // A fresh library gets the bundle's set and a used one nothing: the hosted tests play both through
    // the built bundle. Here, presets only in sub-folders do not make the library a used one.
    ScopedTempHome home;
    const auto factory = home.folder.getChildFile ("ondrivel.vst3/Contents/Resources/Presets"), lib = home.library();
    writePresetFile (factory.getChildFile ("Factory One.xml"), "Factory One", "Pad", "Velkaro");
    writePresetFile (factory.getChildFile ("Basses/Factory Two.xml"), "Factory Two", "Bass", "Velkaro");
    writePresetFile (lib.getChildFile ("Basses/Factory Two.xml"), "my own edit");
    const auto users = snapshotFiles (lib);
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (lib, factory);
    const auto after = snapshotFiles (lib);
    EXPECT_EQ (after.size(), 2u);
    EXPECT_EQ (after.at ("Basses/Factory Two.xml"), users.at ("Basses/Factory Two.xml"));
    EXPECT_EQ (after.at ("Factory One.xml"), snapshotFiles (factory).at ("Factory One.xml"));

    // A bundle without presets copies nothing and fails nothing.
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (home.folder.getChildFile ("empty"), home.folder.getChildFile ("none"));
    EXPECT_FALSE (home.folder.getChildFile ("empty").exists());
}
