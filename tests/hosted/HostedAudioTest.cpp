// SPDX-License-Identifier: AGPL-3.0-or-later
// Audio through the VST3 wrapper under the block sizes and rates hosts use, and MIDI that must
// survive the wrapper (notes, mod wheel).
#include "hosted/HostedPlugin.h"

using hosted::HostedPluginTest;

namespace
{
void playChord (PluginHost& host)
{
    for (int note : hosted::standardChord)
        host.scheduleNote (note, 100, 0, (juce::int64) (host.getSampleRate() * 0.3));
}
} // namespace

TEST (HostedAudio, OddBlockSizesAndAllRatesGiveFiniteOutput)
{
    HostEnvironment environment;
    struct Case
    {
        double rate;
        int block;
    };
    const Case cases[] = { { 48000, 1 },   { 48000, 7 },   { 48000, 4096 }, { 22050, 256 }, { 44100, 333 },
                           { 88200, 256 }, { 96000, 512 }, { 176400, 64 },  { 192000, 1024 } };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (juce::String (c.rate) + " Hz, block " + juce::String (c.block));
        auto host = hosted::loadBuiltPlugin (c.rate, c.block);
        ASSERT_NE (host, nullptr);
        playChord (*host);
        const auto levels = hosted::render (*host, (juce::int64) (c.rate * 0.5));
        EXPECT_EQ (levels.nonFinite, 0);
    }
}

TEST_F (HostedPluginTest, ExtremeSettingsGiveFiniteOutput)
{
    // Every parameter at one end of its range, then at the other, with the chord playing.
    for (const bool atMax : { false, true })
    {
        for (const auto& row : parameterTable)
            PluginHost::setParameterValue (parameter (row.id), atMax ? row.max : row.min);
        PluginHost::setParameterValue (parameter ("volume"), 1.0);
        playChord (*host);
        const auto levels = hosted::render (*host, 24000);
        EXPECT_EQ (levels.nonFinite, 0) << (atMax ? "maximum" : "minimum");
    }
}

TEST_F (HostedPluginTest, ModWheelThroughTheWrapperSetsVibrato)
{
    host->scheduleMidi (10, juce::MidiMessage::controllerEvent (1, 1, 127));
    host->renderNext (host->getBlockSize());
    const auto state = hosted::stateXml (*host);
    ASSERT_NE (state, nullptr);
    EXPECT_EQ (hosted::stateValue (*state, "vibrato").getFloatValue(), 1.0f);

    host->scheduleMidi (host->getPosition(), juce::MidiMessage::controllerEvent (1, 1, 0));
    host->renderNext (host->getBlockSize());
    EXPECT_EQ (hosted::stateValue (*hosted::stateXml (*host), "vibrato").getFloatValue(), 0.0f);
}

TEST_F (HostedPluginTest, SilentWithoutNotes)
{
    const auto levels = hosted::render (*host, 48000);
    EXPECT_EQ (levels.nonFinite, 0);
    EXPECT_EQ (levels.peak, 0.0f);
}
