// SPDX-License-Identifier: AGPL-3.0-or-later
// What hosts do around the audio: prepare and release again and again at changing rates and block
// sizes with notes hanging across, restore states and automate from another thread while the audio
// thread renders.
#include "engine/stress/StressCases.h"

#include <atomic>
#include <thread>

namespace
{
const double sampleRates[] = { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 };
} // namespace

TEST (Stress, PrepareReleaseCyclesWithRateChangesKeepOutputFinite)
{
    juce::Random random (77);
    StressRig rig (48000.0, 512);
    juce::MidiBuffer midi;
    midi.ensureSize (4096);

    const int cycles = (int) stressSeconds (16.0);
    for (int cycle = 0; cycle < cycles; ++cycle)
    {
        const double rate = sampleRates[random.nextInt (6)];
        const int maxBlock = 1 + random.nextInt (4096);
        rig.reprepare (rate, maxBlock);
        rig.randomiseParameters (random, 6);

        // Notes from the previous cycle may still sound; the first block starts new ones and ends
        // others that this instance never saw begin.
        const auto total = (juce::int64) (rate * 0.05);
        for (juce::int64 done = 0; done < total;)
        {
            const int n = (int) juce::jmin ((juce::int64) (1 + random.nextInt (maxBlock)), total - done);
            midi.clear();
            if (done == 0)
                for (int i = 0; i < 4; ++i)
                {
                    midi.addEvent (juce::MidiMessage::noteOn (1, 40 + random.nextInt (50), (juce::uint8) 100), 0);
                    midi.addEvent (juce::MidiMessage::noteOff (1, 40 + random.nextInt (50)), n - 1);
                }
            rig.render (n, midi);
            done += n;
        }
    }
    stress::expectHealthy ("prepare/release cycles: " + juce::String (cycles), rig.stats);
}

TEST (Stress, StateRestoresAndAutomationFromAnotherThreadWhileAudioRuns)
{
    // The test thread plays the host's message thread; a second thread renders, as a host's audio
    // thread does. A state restore may cut the sound; it must not crash or produce NaN.
    StressRig rig (48000.0, 512);
    for (int index : { ParameterIndex::bp1, ParameterIndex::bp2, ParameterIndex::bp3 })
        rig.setParameter (index, 1.0f);

    juce::Random random (4242);
    std::vector<juce::MemoryBlock> states;
    for (int i = 0; i < 8; ++i)
    {
        rig.randomiseParameters (random, 30);
        states.emplace_back();
        rig.processor().getStateInformation (states.back());
    }
    states.push_back (juce::MemoryBlock ("VC2!\x05\0\0\0<a/", 12)); // damaged block
    states.push_back (juce::MemoryBlock());                           // empty block

    std::atomic<bool> running { true };
    std::atomic<int> blocksRendered { 0 };
    std::thread audio ([&]
    {
        juce::Random audioRandom (99);
        stress::ChordPlayer chords (audioRandom, 4800, 6);
        juce::MidiBuffer midi;
        midi.ensureSize (4096);
        juce::int64 position = 0;
        while (running.load())
        {
            const int n = 1 + audioRandom.nextInt (512);
            midi.clear();
            chords.addEvents (midi, position, n);
            rig.render (n, midi);
            position += n;
            blocksRendered.fetch_add (1);
        }
    });

    const auto end = juce::Time::getMillisecondCounter() + (juce::uint32) (stressSeconds (1.5) * 1000.0);
    int restores = 0, automations = 0;
    while (juce::Time::getMillisecondCounter() < end || blocksRendered.load() < 200)
    {
        if (random.nextInt (4) == 0)
        {
            const auto& state = states[(size_t) random.nextInt ((int) states.size())];
            rig.processor().setStateInformation (state.getData(), (int) state.getSize());
            ++restores;
        }
        else
        {
            // Unlike the audio thread's rig calls, these land in the middle of blocks.
            rig.setNormalised (random.nextInt (numParameters), random.nextFloat());
            ++automations;
        }
        std::this_thread::yield();
    }
    running = false;
    audio.join();

    stress::expectHealthy ("state and automation while audio runs: " + juce::String (restores) + " restores, "
                               + juce::String (automations) + " changes",
                           rig.stats);
}
