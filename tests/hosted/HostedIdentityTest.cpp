// SPDX-License-Identifier: AGPL-3.0-or-later
// What a DAW sees when it loads the bundle: identity, bus layouts, latency, programs, parameters
// and their texts; the mod wheel through the wrapper, and silence without notes.
#include "hosted/HostedPlugin.h"

using hosted::HostedPluginTest;

TEST_F (HostedPluginTest, BundleIsAStereoInstrumentWithoutLatencyOrTailAndTheTableParameters)
{
    const auto& description = host->getDescription();
    auto& instance = host->getInstance();
    EXPECT_EQ (description.name + " " + description.pluginFormatName + " " + instance.getName(), "ondrivel VST3 ondrivel");
    EXPECT_TRUE (description.isInstrument && description.category.contains ("Instrument") && description.category.contains ("Synth"))
        << description.category;
    EXPECT_TRUE (instance.acceptsMidi() && ! instance.producesMidi());

    EXPECT_EQ (instance.getBusCount (true), 0);
    ASSERT_EQ (instance.getBusCount (false), 1);
    EXPECT_EQ (instance.getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (instance.getBus (false, 0)->getCurrentLayout(), juce::AudioChannelSet::stereo());
    EXPECT_EQ (instance.getTotalNumOutputChannels(), 2);

    // A host asks, through the wrapper, which layouts the instrument takes: its own alone.
    instance.releaseResources();
    using Set = juce::AudioChannelSet;
    for (const auto& [output, accepted] : { std::pair (Set::stereo(), true), std::pair (Set::mono(), false),
                                            std::pair (Set::create5point1(), false) })
    {
        juce::AudioProcessor::BusesLayout layout;
        layout.outputBuses.add (output);
        EXPECT_EQ (instance.checkBusesLayoutSupported (layout), accepted) << output.getDescription();
    }
    EXPECT_TRUE (instance.setBusesLayout (instance.getBusesLayout()));

    for (double rate : { 44100.0, 48000.0, 96000.0 })
    {
        host->prepare (rate, 512);
        EXPECT_EQ (instance.getLatencySamples(), 0) << rate;
    }
    EXPECT_EQ (instance.getTailLengthSeconds(), 0.0);
    // Hosts and the VST3 validator read the program list; an empty name there fails validation.
    EXPECT_EQ (host->getProgramNames(), juce::StringArray ("no name"));

    // Exactly the table's parameters at their defaults, with their texts, in the id order projects and
    // automation rely on.
    const auto ids = juce::StringArray::fromTokens ("octave up bp1 time sync fmit squeezeit fdbk envms revmix rev bp2 rate flangerit bp3 "
                                                    "pre tilt drywet pitch timbre noise envmod ws attack decay sustain release vibrato volume reverb", false);
    const auto& parameters = host->getParameters();
    const auto state = hosted::stateXml (*host);
    ASSERT_NE (state, nullptr);
    ASSERT_EQ (parameters.size(), ids.size());
    for (const auto& row : parameterTable)
    {
        SCOPED_TRACE (row.id);
        EXPECT_EQ (host->findParameter (ids[row.index]), parameters[row.index]);
        EXPECT_EQ (parameters[row.index]->getName (64), juce::String (row.name));
        EXPECT_FLOAT_EQ (hosted::stateValue (*state, row.id).getFloatValue(), (float) row.defaultValue);
    }
    EXPECT_EQ (host->findParameter ("tap"), nullptr);

    // One of each kind of text reaches the host; the full tables are the parameter list's own tests.
    const std::tuple<const char*, double, const char*> cases[] = { { "time", 1000, "1000 ms" }, { "fmit", 0, "off" },
                                                                   { "squeezeit", -1000, "-1000 mult" }, { "reverb", 0.5, "" },
                                                                   { "pitch", 8, "+7" }, { "volume", 1, "1.000" } };
    for (const auto& [id, value, text] : cases)
        EXPECT_EQ (parameter (id).getText (parameter (id).getValueForText (juce::String (value)), 128), juce::String (text)) << id << " at " << value;
    EXPECT_EQ (parameter ("rate").getLabel(), " Hz");
}

TEST_F (HostedPluginTest, ModWheelThroughTheWrapperSetsVibratoAndNothingSoundsWithoutNotes)
{
    for (const int value : { 127, 0 })
    {
        host->scheduleMidi (host->getPosition() + 10, juce::MidiMessage::controllerEvent (1, 1, value));
        host->renderNext (host->getBlockSize());
        const auto state = hosted::stateXml (*host);
        ASSERT_NE (state, nullptr);
        EXPECT_EQ (hosted::stateValue (*state, "vibrato").getFloatValue(), (float) value / 127.0f);
    }
    // Without notes, silence.
    juce::AudioBuffer<float> silence (2, 48000);
    silence.clear();
    EXPECT_EQ (hosted::differingSamples (hosted::render (*host, 48000), silence), 0);
}
