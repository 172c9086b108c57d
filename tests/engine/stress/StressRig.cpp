// SPDX-License-Identifier: AGPL-3.0-or-later
// The stress suite's host stand-in.
#include "engine/stress/StressRig.h"

#include <cmath>
#include <cstdio>

#include "engine/support/ScopedRealTimeRecord.h"

StressRig::StressRig (double sampleRate, int maxBlock) : maxBlockSize (maxBlock), instance (std::make_unique<KestruneAudioProcessor>())
{
    reprepare (sampleRate, maxBlock);
}

void StressRig::reprepare (double sampleRate, int maxBlock)
{
    maxBlockSize = maxBlock;
    instance->releaseResources();
    instance->setRateAndBufferSizeDetails (sampleRate, maxBlockSize);
    instance->prepareToPlay (sampleRate, maxBlockSize);
    buffer.setSize (2, maxBlockSize);
}

void StressRig::render (int n, juce::MidiBuffer& midi)
{
    jassert (n >= 1 && n <= maxBlockSize);
    // A view of the first n samples: no reallocation, as a host hands a shorter block.
    juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), 2, n);
    block.clear();

    bool modWheel = false;
    for (const auto metadata : midi)
        modWheel = modWheel || (metadata.numBytes == 3 && (metadata.data[0] & 0xf0) == 0xb0 && metadata.data[1] == 1);

    std::size_t mutexes = 0;
    {
        ScopedRealTimeRecord record;
        instance->processBlock (block, midi);
        stats.news += record.getNews();
        stats.mallocs += record.getMallocs();
        mutexes = record.getDistinctMutexes();
    }
    auto& most = modWheel ? stats.mostMutexesWithModWheel : stats.mostMutexes;
    most = juce::jmax (most, mutexes);
    stats.blocks += 1;
    for (int ch = 0; ch < 2; ++ch)
        for (int i = 0; i < n; ++i)
        {
            const float x = block.getSample (ch, i);
            if (! std::isfinite (x))
                ++stats.nonFinite;
            else
                stats.peak = juce::jmax (stats.peak, std::abs (x));
        }
}

void StressRig::setParameter (int index, float value)
{
    auto* ranged = instance->parameters.getParameter (parameterTable[index].id);
    ranged->setValueNotifyingHost (ranged->convertTo0to1 (value));
}

void StressRig::setNormalised (int index, float normalised)
{
    instance->parameters.getParameter (parameterTable[index].id)->setValueNotifyingHost (normalised);
}

void StressRig::randomiseParameters (juce::Random& random, int howMany)
{
    for (int i = 0; i < howMany; ++i)
    {
        const int index = random.nextInt (numParameters);
        if (index != ParameterIndex::volume)
            setNormalised (index, random.nextInt (3) == 0 ? (float) random.nextInt (2) : random.nextFloat());
    }
}

namespace stress
{
// The sanitizer owns malloc in sanitized builds, which run the same cases on fewer seconds of audio.
double seconds (double atFullSpeed) { return ScopedRealTimeRecord::isActive() ? atFullSpeed : atFullSpeed * 0.25; }

void expectHealthy (const juce::String& name, const StressStats& stats, Stealing stealing)
{
    std::printf ("stress | %-58s | %7lld blocks | peak %9.4f | non-finite %lld | allocations %zu new, %zu malloc | mutexes %zu/%zu\n",
                 name.toRawUTF8(), (long long) stats.blocks, (double) stats.peak, (long long) stats.nonFinite, stats.news,
                 stats.mallocs, stats.mostMutexes, stats.mostMutexesWithModWheel);
    std::fflush (stdout);
    EXPECT_EQ (stats.nonFinite, 0) << name;
    // No limiter in the chain, so loud settings may exceed full scale; this only catches output that
    // grows without limit (a feedback loop gone unstable).
    EXPECT_LT (stats.peak, 64.0f) << name;
    EXPECT_EQ (stats.news, 0u) << name;
    if (stealing == Stealing::impossible)
        EXPECT_EQ (stats.mallocs, 0u) << name;
    // The synthesiser's voice lock and its voice-stealing lock, and the keyboard state's lock; with a
    // mod-wheel message also the listener locks of the parameter notification it sends.
    EXPECT_LE (stats.mostMutexes, 3u) << name;
    EXPECT_LE (stats.mostMutexesWithModWheel, 5u) << name;
}
} // namespace stress
