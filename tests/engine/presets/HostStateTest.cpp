// SPDX-License-Identifier: AGPL-3.0-or-later
// The state block a host stores in its project: exact round trip, silent rejection of bad blocks, and
// a recall that never counts as a library preset.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
std::array<float, numParameters> valuesOf (KestruneAudioProcessor& p)
{
    std::array<float, numParameters> values {};
    for (int i = 0; i < numParameters; ++i)
        values[(size_t) i] = p.getParameterValue (i);
    return values;
}

juce::MemoryBlock stateOf (KestruneAudioProcessor& p)
{
    juce::MemoryBlock block;
    p.getStateInformation (block);
    return block;
}

void randomise (KestruneAudioProcessor& p, juce::Random& random)
{
    for (auto* param : p.getParameters())
        param->setValueNotifyingHost (random.nextFloat());
}

// Sum of squares of the output over `blocks` blocks with the given MIDI in the first one.
double render (KestruneAudioProcessor& p, int blocks, const juce::MidiBuffer& firstMidi = {})
{
    juce::AudioBuffer<float> buffer (2, 256);
    double energy = 0.0;
    for (int b = 0; b < blocks; ++b)
    {
        juce::MidiBuffer midi;
        if (b == 0)
            midi = firstMidi;
        buffer.clear();
        p.processBlock (buffer, midi);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < buffer.getNumSamples(); ++i)
                energy += (double) buffer.getSample (ch, i) * buffer.getSample (ch, i);
    }
    return energy;
}
} // namespace

TEST (HostState, BlockLayoutAndExactRoundTripOfAllThirtyValues)
{
    ScopedTempHome home;
    TestProcessor a, b;
    juce::Random random (1234);
    for (int round = 0; round < 20; ++round)
    {
        randomise (*a.processor, random);
        const auto block = stateOf (*a.processor);
        ASSERT_GT (block.getSize(), 9u);
        EXPECT_EQ (juce::ByteOrder::littleEndianInt (block.getData()), 0x21324356u);
        EXPECT_EQ (juce::ByteOrder::littleEndianInt (juce::addBytesToPointer (block.getData(), 4)), block.getSize() - 9);
        EXPECT_EQ (block[block.getSize() - 1], 0);
        const juce::String xmlText (juce::CharPointer_UTF8 (static_cast<const char*> (block.getData()) + 8));
        EXPECT_TRUE (xmlText.startsWith ("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <ondrivel>"));
        EXPECT_FALSE (xmlText.containsAnyOf ("\r\n"));

        b.processor->setStateInformation (block.getData(), (int) block.getSize());
        EXPECT_EQ (valuesOf (*b.processor), valuesOf (*a.processor)) << "round " << round;
        EXPECT_EQ (stateOf (*b.processor), block);
    }
}

TEST (HostState, BadBlocksLeaveTheParametersButSilenceTheDelay)
{
    ScopedTempHome home;
    TestProcessor t;
    auto& p = *t.processor;
    // A long-ringing forward echo, no reverb, a note that ends at once: afterwards only echoes sound.
    const std::pair<const char*, float> settings[] = { { "bp2", 1.0f }, { "rev", 0.0f }, { "time", 200.0f },
                                                       { "fdbk", 0.9f }, { "revmix", 1.0f }, { "drywet", 1.0f },
                                                       { "reverb", 0.0f }, { "attack", 0.0f }, { "decay", 0.05f },
                                                       { "sustain", 0.0f }, { "release", 0.0f } };
    for (const auto& [id, value] : settings)
    {
        auto* param = p.parameters.getParameter (id);
        param->setValueNotifyingHost (param->convertTo0to1 (value));
    }
    const auto before = valuesOf (p);

    juce::MidiBuffer note;
    note.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
    note.addEvent (juce::MidiMessage::noteOff (1, 60), 128);

    const juce::MemoryBlock good = stateOf (p);
    auto wrongMagic = good;
    wrongMagic[0] = 'X';
    auto zeroLength = good;
    *reinterpret_cast<juce::uint32*> (juce::addBytesToPointer (zeroLength.getData(), 4)) = 0;
    auto notXml = good;
    for (size_t i = 8; i + 1 < notXml.getSize(); ++i)
        notXml[i] = 'z';

    struct Case { const char* what; juce::MemoryBlock block; };
    bool echoesHeard = false;
    const Case cases[] = {
        { "8 bytes", juce::MemoryBlock (good.getData(), 8) },
        { "9 bytes, wrong magic", juce::MemoryBlock ("ABCD\x01\0\0\0x", 9) },
        { "wrong magic", wrongMagic },
        { "zero length", zeroLength },
        { "not XML", notXml },
        { "empty", juce::MemoryBlock() },
    };
    for (const auto& c : cases)
    {
        // Only the delay sounds: a note is heard when its recorded block plays, up to 0.4 s later.
        // A state load while the note is still being recorded must leave nothing to play.
        render (p, 1, note);
        render (p, 8);
        const double echoes = render (p, 150);
        render (p, 1, note);
        render (p, 8);
        p.setStateInformation (c.block.getData(), (int) c.block.getSize());
        EXPECT_EQ (valuesOf (p), before) << c.what;
        const double afterBadBlock = render (p, 150);
        EXPECT_LT (afterBadBlock, std::max (echoes * 1e-3, 1e-12)) << c.what << ": the delay still sounds";
        echoesHeard = echoesHeard || echoes > 1e-3;
    }
    p.setStateInformation (nullptr, 100);
    EXPECT_EQ (valuesOf (p), before);
    if (! echoesHeard)
        GTEST_SKIP() << "the delay makes no echoes yet, so only the parameters were checked";
}

TEST (HostState, ARecallIsNeverTakenForALibraryPreset)
{
    ScopedTempHome home;
    writePresetFile (home.library().getChildFile ("1.xml"), "First", "Pad", "Ann");
    writePresetFile (home.library().getChildFile ("2.xml"), "Second", "Lead", "Bob", { { "timbre", "0.5" } });
    TestProcessor t;
    auto& p = *t.processor;
    auto& manager = p.presetManager;
    int presetChanges = 0;
    manager.onPresetChange = [&] (const velkaro::Preset*) { ++presetChanges; };

    manager.selectPreset (1);
    const auto saved = stateOf (p);
    manager.selectPreset (0);
    p.selection.setProperty ("name", "First", nullptr);
    p.parameters.getParameter ("noise")->setValueNotifyingHost (0.5f);
    p.parameters.copyState();
    ASSERT_TRUE (manager.isModified());

    p.setStateInformation (saved.getData(), (int) saved.getSize());
    EXPECT_EQ (presetChanges, 2) << "a recall does not announce a preset";
    EXPECT_EQ (manager.getCurrentPreset(), nullptr);
    EXPECT_FALSE (manager.hasSelection());
    EXPECT_FALSE (p.selection.hasProperty ("index"));
    EXPECT_FALSE (p.selection.hasProperty ("name"));
    EXPECT_FALSE (manager.isModified());
    const auto& program = manager.getCurrentProgram();
    EXPECT_EQ (program.preset, nullptr);
    EXPECT_EQ (program.name, "Second") << "the project gets its name back from the state";
    EXPECT_EQ (program.author, "Bob");
    EXPECT_FALSE (program.isModified);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::timbre), 0.5f);
    EXPECT_EQ (p.getNumPrograms(), 1);
    EXPECT_EQ (p.getProgramName (0), "no name");

    // Next starts again from the top of the list.
    manager.selectNext();
    EXPECT_EQ (manager.getCurrentPreset()->name, "First");

    // A state of another shape is installed: missing parameters take their defaults, a future extra
    // parameter is carried along untouched.
    const auto other = juce::parseXML ("<future><PARAM id=\"timbre\" value=\"0.25\"/><PARAM id=\"newknob\" value=\"3\"/></future>");
    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (*other, block);
    p.setStateInformation (block.getData(), (int) block.getSize());
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::timbre), 0.25f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::noise), 0.0f);
    EXPECT_EQ (manager.getCurrentProgram().name, "[init]");
    EXPECT_TRUE (p.parameters.copyState().getChildWithProperty ("id", "newknob").isValid());
}

TEST (HostState, TenThousandRandomAndMutatedBlocksNeverBreakThePlugIn)
{
    ScopedTempHome home;
    TestProcessor t;
    auto& p = *t.processor;
    juce::Random random (99);
    randomise (p, random);
    const auto good = stateOf (p);

    for (int i = 0; i < 10000; ++i)
    {
        juce::MemoryBlock block;
        switch (i % 4)
        {
            case 0: // random bytes, sometimes behind a valid header
                block.setSize ((size_t) random.nextInt (200));
                random.fillBitsRandomly (block.getData(), block.getSize());
                if (block.getSize() >= 8 && random.nextBool())
                {
                    const juce::uint32 magic = 0x21324356, length = (juce::uint32) random.nextInt (1000) - 10;
                    std::memcpy (block.getData(), &magic, 4);
                    std::memcpy (juce::addBytesToPointer (block.getData(), 4), &length, 4);
                }
                break;
            case 1: // a few bytes of a good block flipped
                block = good;
                for (int f = random.nextInt (5) + 1; --f >= 0;)
                    block[(size_t) random.nextInt ((int) block.getSize())] = (char) random.nextInt (256);
                break;
            case 2: // a good block cut short, or its stated length changed
                block = juce::MemoryBlock (good.getData(), (size_t) random.nextInt ((int) good.getSize() + 1));
                if (block.getSize() >= 8 && random.nextBool())
                {
                    const auto length = (juce::uint32) random.nextInt ((int) good.getSize() * 2);
                    std::memcpy (juce::addBytesToPointer (block.getData(), 4), &length, 4);
                }
                break;
            default: // a good block whose values or ids were replaced by other text
            {
                auto text = juce::String::fromUTF8 (static_cast<const char*> (good.getData()) + 8);
                const char* replacements[] = { "nan", "-1e39", "inf", "", "x", "1e-45", "99999999999" };
                const auto start = text.indexOf (random.nextInt (text.length()), "value=\"");
                if (start >= 0)
                {
                    const auto end = text.indexOfChar (start + 7, '"');
                    text = text.replaceSection (start + 7, end - start - 7, replacements[random.nextInt (7)]);
                }
                if (random.nextInt (4) == 0)
                    text = text.replace ("id=\"" + juce::String (parameterTable[random.nextInt (30)].id) + "\"", "id=\"gone\"");
                if (const auto xml = juce::parseXML (text))
                    juce::AudioProcessor::copyXmlToBinary (*xml, block);
                break;
            }
        }
        p.setStateInformation (block.getData(), (int) block.getSize());
        if (i % 100 == 0)
        {
            for (const auto& row : parameterTable)
            {
                const float v = p.getParameterValue (row.index);
                ASSERT_TRUE (v >= (float) row.min && v <= (float) row.max) << row.id << " = " << v << " at " << i;
            }
        }
    }
    EXPECT_EQ (p.presetManager.getCurrentPreset(), nullptr);
}
