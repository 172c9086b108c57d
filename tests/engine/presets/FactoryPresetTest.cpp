// SPDX-License-Identifier: AGPL-3.0-or-later
// The factory preset set as shipped: complete and described, loaded exactly, stored as the plug-in
// writes presets, exact through a host recall, and audible.
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

// Plays a chord for one second and lets it ring for another; returns the output's RMS, which is NaN
// when any sample is not finite.
double chordRms (KestruneAudioProcessor& p)
{
    juce::AudioBuffer<float> buffer (2, 512);
    double energy = 0.0;
    for (int block = 0; block < 200; ++block)
    {
        juce::MidiBuffer midi;
        for (const int note : { 48, 55, 60, 64 })
            if (block == 0 || block == 100)
                midi.addEvent (block == 0 ? juce::MidiMessage::noteOn (1, note, (juce::uint8) 100) : juce::MidiMessage::noteOff (1, note), 0);
        buffer.clear();
        p.processBlock (buffer, midi);
        for (int ch = 0; ch < 2; ++ch)
            for (int s = 0; s < buffer.getNumSamples(); ++s)
                energy += (double) buffer.getSample (ch, s) * buffer.getSample (ch, s);
    }
    return std::sqrt (energy / (200.0 * 512.0 * 2.0));
}
} // namespace

TEST (FactoryPresets, AreCompleteDescribedAndInRange)
{
    const auto files = factoryFiles();
    ASSERT_GE (files.size(), 24);
    std::set<juce::String> names, types, authors;
    for (const auto& file : files)
    {
        SCOPED_TRACE (file.getFileName().toStdString());
        const auto xml = juce::XmlDocument::parse (file);
        ASSERT_NE (xml, nullptr);
        EXPECT_EQ (xml->getTagName(), "ondrivel");
        const velkaro::Preset preset (*xml, file);
        EXPECT_TRUE (names.insert (preset.name).second) << "names are unique";
        EXPECT_EQ (file.getFileNameWithoutExtension(), preset.name);
        EXPECT_TRUE (preset.type.isNotEmpty() && preset.author.isNotEmpty());
        EXPECT_GE (preset.notes.length(), 80) << "a helpful note";
        types.insert (preset.type);
        authors.insert (preset.author);
    }
    for (const char* type : { "Pad", "Keys", "Bass", "Pluck", "Lead", "Texture", "FX" })
        EXPECT_EQ (types.count (type), 1u) << type;
    EXPECT_GE (authors.size(), 3u);
}

TEST (FactoryPresets, LoadExactlySurviveASaveAndAHostRecallAndSound)
{
    ScopedTempHome home;
    home.library().createDirectory();
    for (const auto& file : factoryFiles())
        file.copyFileTo (home.library().getChildFile (file.getFileName()));
    TestProcessor t (48000.0, 512), recalled;
    auto& p = *t.processor;
    auto& manager = p.presetManager;
    ASSERT_EQ ((int) manager.getNumPresets(), factoryFiles().size());
    int modifiedReports = 0;
    manager.onProgramModified = [&] { ++modifiedReports; };

    for (size_t i = 0; i < manager.getNumPresets(); ++i)
    {
        manager.selectPreset (i);
        const auto* preset = manager.getCurrentPreset();
        ASSERT_NE (preset, nullptr);
        SCOPED_TRACE (preset->name.toStdString());

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
}
