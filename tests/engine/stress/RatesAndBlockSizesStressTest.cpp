// SPDX-License-Identifier: AGPL-3.0-or-later
// Every sample rate a host may run at, every awkward block size and sizes that change from block to
// block, with the parameters moved at random before every block and chords changing underneath.
#include "engine/stress/StressCases.h"

namespace
{
const double sampleRates[] = { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 };
const int blockSizes[] = { 1, 2, 7, 31, 32, 33, 256, 1000, 4096, 8192 };
constexpr int varying = 0; // block size drawn anew for every block, up to 8192

StressStats runCase (double rate, int blockSize, juce::int64 seed)
{
    juce::Random random (seed);
    const int maxBlock = blockSize == varying ? 8192 : blockSize;
    StressRig rig (rate, maxBlock);
    stress::ChordPlayer chords (random, (juce::int64) (rate * 0.09), 5);

    juce::MidiBuffer midi;
    midi.ensureSize (8192);
    const auto total = (juce::int64) (rate * stressSeconds (0.12));
    for (juce::int64 done = 0; done < total;)
    {
        int n = blockSize;
        if (blockSize == varying)
            n = random.nextInt (4) == 0 ? 1 + random.nextInt (8) : 1 + random.nextInt (8192);
        n = (int) juce::jmin ((juce::int64) n, total - done);

        rig.randomiseParameters (random, 3);
        midi.clear();
        chords.addEvents (midi, done, n);
        if (random.nextInt (8) == 0)
            midi.addEvent (juce::MidiMessage::pitchWheel (1, random.nextInt (16384)), random.nextInt (n));
        rig.render (n, midi);
        done += n;
    }
    return rig.stats;
}
} // namespace

TEST (Stress, EveryRateAndBlockSizeWithRandomAutomationStaysFiniteAndAllocationFree)
{
    StressStats all;
    juce::int64 seed = 101;
    for (double rate : sampleRates)
    {
        std::vector<int> sizes (std::begin (blockSizes), std::end (blockSizes));
        sizes.push_back (varying);
        for (int blockSize : sizes)
        {
            const auto name = juce::String (rate, 0) + " Hz, block " + (blockSize == varying ? juce::String ("varying") : juce::String (blockSize));
            const auto stats = runCase (rate, blockSize, seed++);
            stress::expectHealthy (name, stats);
            all.merge (stats);
        }
    }
    reportCase ("all rates and block sizes", all);
}
