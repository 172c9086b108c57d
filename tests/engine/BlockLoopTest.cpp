// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor's own block arithmetic: held-note gain, mod wheel, clipper, DC blockers, dry/wet.
#include <gtest/gtest.h>

#include "core/DcBlocker.h"
#include "core/SoftClipper.h"
#include "support/TestProcessor.h"

#include <cmath>

namespace
{
void runBlock (KestruneAudioProcessor& p, juce::MidiBuffer& midi, int n = 256)
{
    juce::AudioBuffer<float> buffer (2, n);
    buffer.clear();
    p.processBlock (buffer, midi);
}

void runBlock (KestruneAudioProcessor& p, int n = 256)
{
    juce::MidiBuffer midi;
    runBlock (p, midi, n);
}
} // namespace

TEST (BlockLoop, HeldNoteCountSetsPolyphonyGainTarget)
{
    TestProcessor t;
    auto& p = *t.processor;

    juce::MidiBuffer nine;
    for (int i = 0; i < 9; ++i)
        nine.addEvent (juce::MidiMessage::noteOn (1, 60 + i, (juce::uint8) 100), i);
    for (int i = 0; i < 9; ++i)
        nine.addEvent (juce::MidiMessage::noteOff (1, 60 + i), 100 + i);
    runBlock (p, nine);
    EXPECT_EQ (p.getHeldNotes(), 0);
    EXPECT_FLOAT_EQ (p.getPolyGainTarget(), 1.0f);

    // A note-off never preceded by its note-on drives the count below zero; the gain stays at one.
    juce::MidiBuffer strayOff;
    strayOff.addEvent (juce::MidiMessage::noteOff (1, 40), 0);
    runBlock (p, strayOff);
    EXPECT_EQ (p.getHeldNotes(), -1);
    EXPECT_FLOAT_EQ (p.getPolyGainTarget(), 1.0f);

    struct Step { int note; bool on; int held; float target; };
    const Step steps[] = { { 50, true, 0, 1.0f }, { 51, true, 1, 1.0f }, { 52, true, 2, 0.5f },
                           { 53, true, 3, 1.0f / 3.0f }, { 53, false, 2, 0.5f }, { 52, false, 1, 1.0f } };
    for (const auto& s : steps)
    {
        juce::MidiBuffer midi;
        midi.addEvent (s.on ? juce::MidiMessage::noteOn (1, s.note, (juce::uint8) 90) : juce::MidiMessage::noteOff (1, s.note), 10);
        runBlock (p, midi);
        EXPECT_EQ (p.getHeldNotes(), s.held);
        EXPECT_FLOAT_EQ (p.getPolyGainTarget(), s.target);
    }

    // Note-on with velocity 0 counts as a note-off; events outside the block are not counted.
    juce::MidiBuffer zeroVelocity;
    zeroVelocity.addEvent (juce::MidiMessage::noteOn (1, 51, (juce::uint8) 0), 3);
    zeroVelocity.addEvent (juce::MidiMessage::noteOn (1, 70, (juce::uint8) 90), 300);
    runBlock (p, zeroVelocity);
    EXPECT_EQ (p.getHeldNotes(), 0);
}

TEST (BlockLoop, PolyphonyGainRampsOverOneHundredthOfTheRateInBlocks)
{
    TestProcessor t (48000.0, 64);
    auto& p = *t.processor;
    juce::MidiBuffer chord;
    chord.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
    chord.addEvent (juce::MidiMessage::noteOn (1, 64, (juce::uint8) 100), 0);
    runBlock (p, chord, 64);
    EXPECT_FLOAT_EQ (p.getPolyGainTarget(), 0.5f);
    // 480 steps at 48 kHz, one per block: after the first block one step is taken.
    EXPECT_NEAR (p.polyGain.getCurrent(), 1.0f - 0.5f / 480.0f, 1e-6f);
    for (int i = 0; i < 478; ++i)
        runBlock (p, 64);
    EXPECT_GT (p.polyGain.getCurrent(), 0.5f);
    runBlock (p, 64);
    EXPECT_FLOAT_EQ (p.polyGain.getCurrent(), 0.5f);
}

TEST (BlockLoop, ModWheelWritesVibratoAndTellsTheHost)
{
    TestProcessor t;
    auto& p = *t.processor;

    struct Listener : juce::AudioProcessorListener
    {
        void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float value) override
        {
            lastIndex = index;
            lastValue = value;
            ++calls;
        }
        void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
        int lastIndex = -1, calls = 0;
        float lastValue = -1.0f;
    } listener;
    p.addListener (&listener);

    struct Case { int value; float expected; };
    for (const auto c : { Case { 127, 1.0f }, Case { 0, 0.0f }, Case { 64, 64.0f / 127.0f } })
    {
        juce::MidiBuffer midi;
        midi.addEvent (juce::MidiMessage::controllerEvent (1, 1, c.value), 5);
        runBlock (p, midi);
        EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::vibrato), c.expected);
        EXPECT_EQ (listener.lastIndex, (int) ParameterIndex::vibrato);
        EXPECT_FLOAT_EQ (listener.lastValue, c.expected);
        EXPECT_TRUE (midi.isEmpty()) << "the plug-in produces no MIDI";
    }
    EXPECT_GE (listener.calls, 3);
    p.removeListener (&listener);
}

TEST (BlockLoop, SoftClipperIsOddMonotonicAndFlatAtTheRails)
{
    EXPECT_FLOAT_EQ (softClip (0.0f), 0.0f);
    EXPECT_FLOAT_EQ (softClip (1.0f), 1.0f);
    EXPECT_FLOAT_EQ (softClip (7.0f), 1.0f);
    EXPECT_FLOAT_EQ (softClip (-7.0f), -1.0f);
    float previous = -2.0f;
    for (float x = -1.5f; x <= 1.5f; x += 0.001f)
    {
        const float y = softClip (x);
        EXPECT_FLOAT_EQ (softClip (-x), -y);
        EXPECT_GE (y, previous - 1e-7f);
        EXPECT_LE (std::abs (y), 1.0f + 1e-6f);
        previous = y;
    }
    // Near zero the slope is 1.1: the clipper adds a little gain to quiet signals.
    EXPECT_NEAR (softClip (0.01f) / 0.01f, 1.1f, 1e-5f);
}

TEST (BlockLoop, DcBlockerRemovesOffsetAndPassesAudio)
{
    struct Case { double rate; };
    for (const double rate : { 22050.0, 48000.0, 192000.0 })
    {
        DcBlocker dc;
        dc.prepare (rate);
        float y = 0.0f;
        for (int i = 0; i < (int) rate; ++i)
            y = dc.process (0.5f);
        EXPECT_EQ (y, 0.0f) << "a one-second DC offset decays and flushes to zero at " << rate;

        double inEnergy = 0.0, outEnergy = 0.0;
        for (int i = 0; i < (int) rate; ++i)
        {
            const float x = (float) std::sin (2.0 * juce::MathConstants<double>::pi * 1000.0 * i / rate);
            const float out = dc.process (x);
            if (i > rate / 10) { inEnergy += x * x; outEnergy += out * out; }
        }
        EXPECT_NEAR (outEnergy / inEnergy, 1.0, 0.01) << rate;
    }
}

TEST (BlockLoop, StateBlockRoundTripAndCorruptBlocks)
{
    TestProcessor t;
    auto& p = *t.processor;
    p.parameters.getParameter ("tilt")->setValueNotifyingHost (0.123f);
    p.parameters.getParameter ("time")->setValueNotifyingHost (0.77f);

    juce::MemoryBlock saved;
    p.getStateInformation (saved);
    ASSERT_GT (saved.getSize(), 9u);
    EXPECT_EQ (std::memcmp (saved.getData(), "VC2!", 4), 0);

    std::array<float, 30> before {};
    for (int i = 0; i < 30; ++i)
        before[(size_t) i] = p.getParameterValue (i);

    const juce::uint8 shortBlock[8] = { 'V', 'C', '2', '!', 1, 0, 0, 0 };
    const juce::uint8 badMagic[9] = { 'X', 'C', '2', '!', 1, 0, 0, 0, 0 };
    p.setStateInformation (shortBlock, sizeof (shortBlock));
    p.setStateInformation (badMagic, sizeof (badMagic));
    p.setStateInformation (nullptr, 0);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ (p.getParameterValue (i), before[(size_t) i]) << parameterTable[i].id;

    TestProcessor fresh;
    fresh.processor->setStateInformation (saved.getData(), (int) saved.getSize());
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ (fresh.processor->getParameterValue (i), before[(size_t) i]) << parameterTable[i].id;
}

TEST (BlockLoop, HostProgramFaceIsOneNamedProgram)
{
    TestProcessor t;
    auto& p = *t.processor;
    EXPECT_EQ (p.getNumPrograms(), 1);
    EXPECT_EQ (p.getCurrentProgram(), 0);
    EXPECT_EQ (p.getProgramName (0), "no name");
    p.setCurrentProgram (5);
    EXPECT_EQ (p.getCurrentProgram(), 0);
    p.changeProgramName (3, "mine");
    EXPECT_EQ (p.getProgramName (0), "mine");
    EXPECT_EQ (p.getLatencySamples(), 0);
    EXPECT_EQ (p.getOutputChannelName (0), "1");

    using Set = juce::AudioChannelSet;
    juce::AudioProcessor::BusesLayout layout;
    struct Case { Set in, out; bool ok; };
    const Case cases[] = { { Set::stereo(), Set::stereo(), true }, { Set::disabled(), Set::stereo(), false },
                           { Set::mono(), Set::mono(), false }, { Set::mono(), Set::stereo(), false },
                           { Set::stereo(), Set::disabled(), false } };
    for (const auto& c : cases)
    {
        layout.inputBuses = { c.in };
        layout.outputBuses = { c.out };
        EXPECT_EQ (p.isBusesLayoutSupported (layout), c.ok);
    }
}
