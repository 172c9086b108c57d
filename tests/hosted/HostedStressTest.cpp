// SPDX-License-Identifier: AGPL-3.0-or-later
// The built VST3, wrapper and all, at every rate and awkward block size while the host automates it
// before every block. Output must stay finite and bounded; each case prints its peak. The processor's
// own stress suite holds the same cases to no allocation and few locks.
#include "hosted/HostedPlugin.h"

#include <cstdio>

TEST (HostedStress, EveryRateAndBlockSizeWithHostAutomation)
{
    HostEnvironment environment;
    constexpr int varying = 0; // drawn anew for every block, up to 8192
    juce::Random random (1);
    for (double rate : { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 })
    {
        // One instance per rate, prepared again for each block size as on a host's settings change.
        auto host = hosted::loadBuiltPlugin (rate, 8192);
        ASSERT_NE (host, nullptr);
        const auto& parameters = host->getParameters();
        for (int size : { 1, 7, 33, 256, 1000, 8192, varying })
        {
            host->prepare (rate, size == varying ? 8192 : size);
            // Notes, pitch wheel on any channel and mod wheel every 50 ms.
            const auto frames = (juce::int64) (rate * 0.08);
            for (juce::int64 t = 0; t < frames; t += (juce::int64) (rate * 0.05))
            {
                host->scheduleNote (24 + random.nextInt (90), 1 + random.nextInt (127), t, t + random.nextInt ((int) rate / 4 + 1));
                host->scheduleMidi (t, juce::MidiMessage::pitchWheel (1 + random.nextInt (16), random.nextInt (16384)));
                host->scheduleMidi (t, juce::MidiMessage::controllerEvent (1, 1, random.nextInt (128)));
            }
            hosted::Levels levels;
            for (juce::int64 done = 0; done < frames;)
            {
                const int n = (int) juce::jmin ((juce::int64) (size == varying ? 1 + random.nextInt (8192) : size), frames - done);
                // Any parameter but the volume, a third of the changes to an end of the range.
                for (int i = 0; i < 3; ++i)
                    if (const int index = random.nextInt (parameters.size()); index != ParameterIndex::volume)
                        parameters[index]->setValue (random.nextInt (3) == 0 ? (float) random.nextInt (2) : random.nextFloat());
                levels.add (host->renderNext (n), n);
                done += n;
            }

            const auto name = juce::String (rate, 0) + " Hz, block " + (size == varying ? juce::String ("varying") : juce::String (size));
            std::printf ("hosted stress | %-28s | %6lld blocks | peak %9.4f | non-finite %lld\n", name.toRawUTF8(), (long long) levels.blocks,
                         (double) levels.peak, (long long) levels.nonFinite);
            std::fflush (stdout);
            EXPECT_EQ (levels.nonFinite, 0) << name;
            // No limiter in the chain: this only catches output that grows without bound.
            EXPECT_LT (levels.peak, 64.0f) << name;
        }
    }
}
