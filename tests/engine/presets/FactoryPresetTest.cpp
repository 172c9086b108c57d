// SPDX-License-Identifier: AGPL-3.0-or-later
// The factory preset set as shipped: complete, in range, stored exactly as the plug-in writes presets,
// exact through a save and a host recall, and audible.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
juce::File factoryFolder() { return juce::File (ONDRIVEL_FACTORY_PRESETS_DIR); }

juce::Array<juce::File> factoryFiles()
{
    auto files = factoryFolder().findChildFiles (juce::File::findFiles, true, "*.xml");
    files.sort();
    return files;
}

bool isOnGrid (double value, const ParameterInfo& row)
{
    if (row.interval <= 0.0)
        return true;
    const double steps = (value - row.min) / row.interval;
    return std::abs (steps - std::round (steps)) < 1e-6;
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

        // PROGRAM first, then the 30 parameters in table order, NOTES last.
        ASSERT_EQ (xml->getNumChildElements(), 32);
        EXPECT_EQ (xml->getChildElement (0)->getTagName(), "PROGRAM");
        EXPECT_EQ (xml->getChildElement (31)->getTagName(), "NOTES");
        for (int i = 0; i < numParameters; ++i)
        {
            const auto* param = xml->getChildElement (i + 1);
            const auto& row = parameterTable[i];
            ASSERT_EQ (param->getTagName(), "PARAM");
            EXPECT_EQ (param->getStringAttribute ("id"), row.id);
            const auto text = param->getStringAttribute ("value");
            EXPECT_TRUE (text.containsOnly ("0123456789.-")) << row.id;
            const double value = text.getDoubleValue();
            EXPECT_TRUE (value >= row.min && value <= row.max && isOnGrid (value, row)) << row.id << " = " << text;
        }
    }
    for (const char* type : { "Pad", "Keys", "Bass", "Pluck", "Lead", "Texture", "FX" })
        EXPECT_EQ (types.count (type), 1u) << type;
    EXPECT_GE (authors.size(), 3u);
}

TEST (FactoryPresets, AreStoredExactlyAsThePlugInWritesPresets)
{
    for (const auto& file : factoryFiles())
    {
        auto xml = juce::XmlDocument::parse (file);
        ASSERT_NE (xml, nullptr);
        juce::MemoryOutputStream written;
        xml->writeTo (written, velkaro::Preset::fileFormat());
        juce::MemoryBlock stored;
        file.loadFileAsData (stored);
        EXPECT_EQ (written.getMemoryBlock(), stored) << file.getFileName();
    }
}

TEST (FactoryPresets, LoadExactlyAndSurviveASaveAndAHostRecall)
{
    ScopedTempHome home;
    home.library().createDirectory();
    for (const auto& file : factoryFiles())
        file.copyFileTo (home.library().getChildFile (file.getFileName()));
    TestProcessor t, recalled;
    auto& manager = t.processor->presetManager;
    ASSERT_EQ ((int) manager.getNumPresets(), factoryFiles().size());
    int modifiedReports = 0;
    manager.onProgramModified = [&] { ++modifiedReports; };

    for (size_t i = 0; i < manager.getNumPresets(); ++i)
    {
        manager.selectPreset (i);
        const auto* preset = manager.getCurrentPreset();
        ASSERT_NE (preset, nullptr);
        SCOPED_TRACE (preset->name.toStdString());

        // Every value arrives as the file states it, up to the float rounding of the parameter's grid.
        for (int p = 0; p < numParameters; ++p)
        {
            const float stated = preset->getChildElement (p + 1)->getStringAttribute ("value").getFloatValue();
            EXPECT_NEAR (t.processor->getParameterValue (p), stated, 1e-6f * std::max (1.0f, std::abs (stated)))
                << parameterTable[p].id;
        }

        // The state holds the preset's text, so the host's copy brings back every value bit for bit.
        juce::MemoryBlock block;
        t.processor->getStateInformation (block);
        recalled.processor->setStateInformation (block.getData(), (int) block.getSize());
        for (int p = 0; p < numParameters; ++p)
            EXPECT_EQ (recalled.processor->getParameterValue (p), t.processor->getParameterValue (p)) << parameterTable[p].id;
        EXPECT_EQ (recalled.processor->presetManager.getCurrentProgram().name, preset->name);

        // Saved back under its own name, the file does not change.
        const juce::String before = preset->file.loadFileAsString();
        const_cast<velkaro::Preset*> (preset)->updateInfoAndSave (preset->getInfo());
        EXPECT_EQ (preset->file.loadFileAsString(), before);
    }
    EXPECT_EQ (modifiedReports, 0) << "loading a factory preset is no edit";
}

TEST (FactoryPresets, RenderFiniteAndAudible)
{
    ScopedTempHome home;
    home.library().createDirectory();
    for (const auto& file : factoryFiles())
        file.copyFileTo (home.library().getChildFile (file.getFileName()));
    TestProcessor t (48000.0, 512);
    auto& p = *t.processor;
    auto& manager = p.presetManager;

    // Plays a chord for one second, lets it ring for another, and returns the output's RMS.
    auto renderChord = [&p] (bool& finite)
    {
        juce::AudioBuffer<float> buffer (2, 512);
        double energy = 0.0;
        finite = true;
        for (int block = 0; block < 200; ++block)
        {
            juce::MidiBuffer midi;
            if (block == 0)
                for (const int note : { 48, 55, 60, 64 })
                    midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
            if (block == 100)
                for (const int note : { 48, 55, 60, 64 })
                    midi.addEvent (juce::MidiMessage::noteOff (1, note), 0);
            buffer.clear();
            p.processBlock (buffer, midi);
            for (int ch = 0; ch < 2; ++ch)
                for (int s = 0; s < buffer.getNumSamples(); ++s)
                {
                    const float x = buffer.getSample (ch, s);
                    finite = finite && std::isfinite (x);
                    energy += (double) x * x;
                }
        }
        return std::sqrt (energy / (200.0 * 512.0 * 2.0));
    };

    bool finite = true;
    const bool engineSounds = renderChord (finite) > 1e-3; // the default sound
    for (size_t i = 0; i < manager.getNumPresets(); ++i)
    {
        manager.selectPreset (i);
        SCOPED_TRACE (manager.getCurrentPreset()->name.toStdString());
        p.setStateInformation (nullptr, 0); // silences the delay between presets, keeps the values
        p.prepareToPlay (48000.0, 512);
        const double rms = renderChord (finite);
        EXPECT_TRUE (finite);
        if (engineSounds)
        {
            EXPECT_GT (rms, 1e-3) << "audible";
        }
    }
    if (! engineSounds)
        GTEST_SKIP() << "the voices make no sound yet, so only finiteness was checked";
}
