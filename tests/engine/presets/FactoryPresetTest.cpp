// SPDX-License-Identifier: AGPL-3.0-or-later
// The factory preset set as shipped: complete and described, loaded exactly, stored as the plug-in
// writes presets, exact through a host recall and audible; copied without replacing a user's file.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

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

// A phrase that suits the type: a bass line, a melody, or two four-note chords; each note as
// (key, start and length in blocks of 512 at 48 kHz), the whole 4.5 s long with its tail.
struct PhraseNote { int key, start, length; };
std::vector<PhraseNote> phraseFor (const juce::String& type)
{
    if (type == "Bass")
        return { { 36, 0, 37 }, { 36, 47, 37 }, { 43, 94, 37 }, { 41, 141, 84 }, { 36, 234, 94 } };
    if (type == "Lead")
        return { { 60, 0, 47 }, { 64, 47, 47 }, { 67, 94, 47 }, { 72, 141, 94 }, { 67, 234, 94 } };
    return { { 48, 0, 141 }, { 55, 0, 141 }, { 60, 0, 141 }, { 64, 0, 141 },
             { 53, 141, 141 }, { 57, 141, 141 }, { 60, 141, 141 }, { 65, 141, 141 } };
}

// Integrated loudness in LUFS as a listener's meter gives it (K-weighted, 400 ms blocks gated at
// -70 LUFS and 10 LU below their mean); NaN when any sample is not finite.
double phraseLoudness (KestruneAudioProcessor& p, const juce::String& type)
{
    struct Biquad
    {
        double b0, b1, b2, a1, a2, x1 = 0, x2 = 0, y1 = 0, y2 = 0;
        double operator() (double x)
        {
            const double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
            x2 = x1, x1 = x, y2 = y1, y1 = y;
            return y;
        }
    };
    const auto phrase = phraseFor (type);
    std::vector<double> power; // K-weighted power of each 100 ms, both channels summed
    Biquad shelf[2] { { 1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241, 0.73248077421585 },
                      { 1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241, 0.73248077421585 } };
    Biquad highPass[2] { { 1, -2, 1, -1.99004745483398, 0.99007225036621 }, { 1, -2, 1, -1.99004745483398, 0.99007225036621 } };
    juce::AudioBuffer<float> buffer (2, 512);
    double sum = 0.0;
    int counted = 0;
    for (int block = 0; block < 422; ++block)
    {
        juce::MidiBuffer midi;
        for (const auto& note : phrase)
        {
            if (block == note.start)
                midi.addEvent (juce::MidiMessage::noteOn (1, note.key, (juce::uint8) 100), 0);
            if (block == note.start + note.length)
                midi.addEvent (juce::MidiMessage::noteOff (1, note.key), 0);
        }
        buffer.clear();
        p.processBlock (buffer, midi);
        for (int s = 0; s < 512; ++s)
        {
            for (int ch = 0; ch < 2; ++ch)
            {
                const double k = highPass[ch] (shelf[ch] (buffer.getSample (ch, s)));
                sum += k * k;
            }
            if (++counted == 4800)
                power.push_back (sum / 4800.0), sum = 0.0, counted = 0;
        }
    }
    const auto lufs = [] (double z) { return -0.691 + 10.0 * std::log10 (z); };
    std::vector<double> blocks;
    for (size_t i = 3; i < power.size(); ++i)
        blocks.push_back ((power[i - 3] + power[i - 2] + power[i - 1] + power[i]) / 4.0);
    const auto gatedMean = [&] (double gate)
    {
        double total = 0.0;
        int n = 0;
        for (const double z : blocks)
            if (! std::isfinite (z))
                return std::numeric_limits<double>::quiet_NaN();
            else if (lufs (z) > gate)
                total += z, ++n;
        return n > 0 ? lufs (total / n) : -1000.0;
    };
    return gatedMean (gatedMean (-70.0) - 10.0);
}
} // namespace

TEST (FactoryPresets, LoadExactlySurviveASaveAndAHostRecallAndSoundAlikeInLoudness)
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
    double loudest = -1000.0, quietest = 0.0;

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

        // Heard on its own in a fresh instance, so no tail of the one before counts.
        TestProcessor listener (48000.0, 512);
        listener.processor->setStateInformation (block.getData(), (int) block.getSize());
        const double loudness = phraseLoudness (*listener.processor, preset->type);
        EXPECT_GT (loudness, -30.0) << "finite and audible";
        loudest = std::max (loudest, loudness);
        quietest = std::min (quietest, loudness);
    }
    // Stepping through the set with "»" never jumps by more than a listener accepts.
    EXPECT_LT (loudest - quietest, 6.0);
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
