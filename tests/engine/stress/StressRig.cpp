// SPDX-License-Identifier: AGPL-3.0-or-later
// The stress suite's host stand-in.
#include "engine/stress/StressRig.h"

#include <cmath>
#include <cstdio>
#include <ctime>

#include "engine/support/AllocationCounter.h"
#include "engine/support/LockCounter.h"
#include "engine/support/MallocCounter.h"

namespace
{
double threadCpuNanoseconds()
{
    timespec t {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &t);
    return (double) t.tv_sec * 1.0e9 + (double) t.tv_nsec;
}
} // namespace

StressRig::StressRig (double sampleRate, int maxBlock) : maxBlockSize (maxBlock), instance (std::make_unique<KestruneAudioProcessor>())
{
    instance->setRateAndBufferSizeDetails (sampleRate, maxBlockSize);
    instance->prepareToPlay (sampleRate, maxBlockSize);
    buffer.setSize (2, maxBlockSize);
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

    std::size_t allocations = 0, mallocs = 0, mutexes = 0;
    const double start = recordTimes ? threadCpuNanoseconds() : 0.0;
    {
        ScopedLockRecord locks;
        ScopedMallocCount mallocCount;
        ScopedAllocationCount count;
        instance->processBlock (block, midi);
        allocations = count.getCount();
        mallocs = mallocCount.getCount();
        mutexes = locks.getDistinctMutexes();
    }
    if (recordTimes)
        stats.blockNanoseconds.push_back (threadCpuNanoseconds() - start);

    stats.allocations += allocations;
    // operator new of the test program allocates through malloc: count the rest.
    stats.cAllocations += mallocs - juce::jmin (mallocs, allocations);
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
double seconds (double atFullSpeed) { return ScopedMallocCount::isActive() ? atFullSpeed : atFullSpeed * 0.25; }

void expectHealthy (const juce::String& name, const StressStats& stats, Stealing stealing)
{
    std::printf ("stress | %-58s | %7lld blocks | peak %9.4f | non-finite %lld | allocations %zu new, %zu malloc | mutexes %zu/%zu\n",
                 name.toRawUTF8(), (long long) stats.blocks, (double) stats.peak, (long long) stats.nonFinite, stats.allocations,
                 stats.cAllocations, stats.mostMutexes, stats.mostMutexesWithModWheel);
    std::fflush (stdout);
    EXPECT_EQ (stats.nonFinite, 0) << name;
    EXPECT_LT (stats.peak, peakBound) << name;
    EXPECT_EQ (stats.allocations, 0u) << name;
    if (stealing == Stealing::impossible)
    {
        EXPECT_EQ (stats.cAllocations, 0u) << name;
    }
    EXPECT_LE (stats.mostMutexes, allowedMutexes) << name;
    EXPECT_LE (stats.mostMutexesWithModWheel, allowedMutexesWithModWheel) << name;
}
} // namespace stress
