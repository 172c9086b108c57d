// SPDX-License-Identifier: AGPL-3.0-or-later
// The built VST3 under a DAW's worst habits: every rate, odd and changing block sizes, automation
// of every parameter through the host's parameter interface before every block and from another
// thread during blocks, MIDI floods, re-preparation at other rates, and project restores while the
// audio runs. Output must stay finite and bounded; the peak of each case is printed.
#include "hosted/HostedPlugin.h"

#include <atomic>
#include <cstdio>
#include <thread>

namespace
{
// No limiter in the chain: this only catches output that grows without bound.
constexpr float peakBound = 64.0f;
constexpr int varying = 0;

struct Outcome
{
    juce::int64 blocks = 0;
    juce::int64 nonFinite = 0;
    float peak = 0.0f;
};

void account (Outcome& outcome, const juce::AudioBuffer<float>& block, int n)
{
    ++outcome.blocks;
    for (int ch = 0; ch < block.getNumChannels(); ++ch)
        for (int i = 0; i < n; ++i)
        {
            const float x = block.getSample (ch, i);
            if (! std::isfinite (x)) ++outcome.nonFinite;
            else outcome.peak = juce::jmax (outcome.peak, std::abs (x));
        }
}

void expectHealthy (const juce::String& name, const Outcome& outcome)
{
    std::printf ("hosted stress | %-52s | %7lld blocks | peak %10.4f | non-finite %lld\n", name.toRawUTF8(),
                 (long long) outcome.blocks, (double) outcome.peak, (long long) outcome.nonFinite);
    std::fflush (stdout);
    EXPECT_EQ (outcome.nonFinite, 0) << name;
    EXPECT_LT (outcome.peak, peakBound) << name;
}

// Random notes, pitch wheel and mod wheel spread over the next `frames` frames.
void scheduleTraffic (PluginHost& host, juce::Random& random, juce::int64 frames)
{
    const auto start = host.getPosition();
    for (juce::int64 t = 0; t < frames; t += (juce::int64) (host.getSampleRate() * 0.05))
    {
        const int note = 24 + random.nextInt (90);
        host.scheduleNote (note, 1 + random.nextInt (127), start + t, start + t + random.nextInt ((int) host.getSampleRate() / 4 + 1));
        host.scheduleMidi (start + t, juce::MidiMessage::pitchWheel (1 + random.nextInt (16), random.nextInt (16384)));
        host.scheduleMidi (start + t, juce::MidiMessage::controllerEvent (1, 1, random.nextInt (128)));
    }
}

Outcome renderWithAutomation (PluginHost& host, juce::Random& random, juce::int64 frames, int blockSize)
{
    Outcome outcome;
    const auto& parameters = host.getParameters();
    for (juce::int64 done = 0; done < frames;)
    {
        int n = blockSize == varying ? 1 + random.nextInt (host.getBlockSize()) : blockSize;
        n = (int) juce::jmin ((juce::int64) n, frames - done);
        for (int i = 0; i < 3; ++i)
        {
            auto* p = parameters[random.nextInt (parameters.size())];
            p->setValue (random.nextInt (3) == 0 ? (float) random.nextInt (2) : random.nextFloat());
        }
        account (outcome, host.renderNext (n), n);
        done += n;
    }
    return outcome;
}
} // namespace

TEST (HostedStress, EveryRateAndBlockSizeWithHostAutomation)
{
    HostEnvironment environment;
    const double rates[] = { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 };
    const int sizes[] = { 1, 2, 7, 31, 32, 33, 256, 1000, 4096, 8192, varying };
    juce::int64 seed = 1;
    for (double rate : rates)
    {
        // One instance per rate, re-prepared for each block size, as a host does on a settings change.
        auto host = hosted::loadBuiltPlugin (rate, 8192);
        ASSERT_NE (host, nullptr);
        for (int size : sizes)
        {
            juce::Random random (seed++);
            host->prepare (rate, size == varying ? 8192 : size);
            const auto frames = (juce::int64) (rate * 0.08);
            scheduleTraffic (*host, random, frames);
            expectHealthy (juce::String (rate, 0) + " Hz, block " + (size == varying ? juce::String ("varying") : juce::String (size)),
                           renderWithAutomation (*host, random, frames, size));
        }
    }
}

TEST (HostedStress, EveryParameterAtItsExtremesInCombination)
{
    HostEnvironment environment;
    auto host = hosted::loadBuiltPlugin (48000.0, 512);
    ASSERT_NE (host, nullptr);
    juce::Random random (99);
    for (int combination = 0; combination < 12; ++combination)
    {
        for (const auto& row : parameterTable)
            PluginHost::setParameterValue (*host->findParameter (row.id), random.nextBool() ? row.max : row.min);
        for (const char* id : { "volume", "bp1", "bp2", "bp3", "reverb" })
            PluginHost::setParameterValue (*host->findParameter (id), 1.0);
        PluginHost::setParameterValue (*host->findParameter ("fdbk"), 0.98);
        for (int note : hosted::standardChord)
            host->scheduleNote (note, 127, host->getPosition(), host->getPosition() + 20000);
        Outcome outcome;
        for (int b = 0; b < 40; ++b)
            account (outcome, host->renderNext (512), 512);
        expectHealthy ("extreme combination " + juce::String (combination), outcome);
    }
}

TEST (HostedStress, MidiFloodThroughTheWrapper)
{
    HostEnvironment environment;
    auto host = hosted::loadBuiltPlugin (44100.0, 256);
    ASSERT_NE (host, nullptr);
    for (const char* id : { "bp1", "bp2", "bp3", "reverb" })
        PluginHost::setParameterValue (*host->findParameter (id), 1.0);

    juce::Random random (5);
    Outcome outcome;
    for (int b = 0; b < 200; ++b)
    {
        const auto at = host->getPosition();
        if (b % 10 == 0)
            for (int note = 0; note < 128; ++note)
                host->scheduleNote (note, 127, at, at + 255); // every key on and off in one block
        for (int i = 0; i < 16; ++i)
        {
            const int ch = 1 + random.nextInt (16);
            host->scheduleMidi (at + random.nextInt (256), random.nextBool() ? juce::MidiMessage::noteOff (ch, random.nextInt (128))
                                                                          : juce::MidiMessage::controllerEvent (ch, 64, random.nextInt (128)));
        }
        if (b % 7 == 0)
            host->scheduleMidi (at, juce::MidiMessage::allNotesOff (1 + random.nextInt (16)));
        account (outcome, host->renderNext (256), 256);
    }
    expectHealthy ("MIDI flood", outcome);
}

TEST (HostedStress, RestoresAndAutomationFromTheMessageThreadWhileAudioRuns)
{
    HostEnvironment environment;
    auto host = hosted::loadBuiltPlugin (48000.0, 512);
    ASSERT_NE (host, nullptr);
    const auto saved = host->getState();
    const auto& parameters = host->getParameters();

    // PluginHost schedules MIDI from the rendering thread only, so the audio thread here plays
    // without notes of its own beyond the ones scheduled up front.
    juce::Random random (17);
    scheduleTraffic (*host, random, 48000 * 3);
    std::atomic<bool> running { true };
    Outcome outcome;
    std::thread audio ([&]
    {
        juce::Random audioRandom (3);
        while (running.load())
        {
            const int n = 1 + audioRandom.nextInt (512);
            account (outcome, host->renderNext (n), n);
        }
    });

    int restores = 0;
    const auto end = juce::Time::getMillisecondCounter() + 1500;
    while (juce::Time::getMillisecondCounter() < end)
    {
        if (random.nextInt (8) == 0)
        {
            host->setState (saved.getData(), saved.getSize());
            ++restores;
        }
        else
            parameters[random.nextInt (parameters.size())]->setValue (random.nextFloat());
        std::this_thread::sleep_for (std::chrono::microseconds (200));
    }
    running = false;
    audio.join();
    expectHealthy ("restores and automation during audio (" + juce::String (restores) + " restores)", outcome);
}
