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

void StressStats::merge (const StressStats& other)
{
    blocks += other.blocks;
    samples += other.samples;
    nonFinite += other.nonFinite;
    allocations += other.allocations;
    cAllocations += other.cAllocations;
    mostMutexes = juce::jmax (mostMutexes, other.mostMutexes);
    mostMutexesWithModWheel = juce::jmax (mostMutexesWithModWheel, other.mostMutexesWithModWheel);
    peak = juce::jmax (peak, other.peak);
    blockNanoseconds.insert (blockNanoseconds.end(), other.blockNanoseconds.begin(), other.blockNanoseconds.end());
}

StressRig::StressRig (double rate, int maxBlock)
    : sampleRate (rate), maxBlockSize (maxBlock), instance (std::make_unique<KestruneAudioProcessor>())
{
    instance->setRateAndBufferSizeDetails (sampleRate, maxBlockSize);
    instance->prepareToPlay (sampleRate, maxBlockSize);
    buffer.setSize (2, maxBlockSize);
    emptyMidi.ensureSize (8192);
}

void StressRig::reprepare (double newSampleRate, int newMaxBlockSize)
{
    sampleRate = newSampleRate;
    maxBlockSize = newMaxBlockSize;
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

    std::size_t allocations = 0, cAllocations = 0, mutexes = 0;
    const double start = recordTimes ? threadCpuNanoseconds() : 0.0;
    {
        ScopedLockRecord locks;
        ScopedMallocCount mallocs;
        ScopedAllocationCount count;
        instance->processBlock (block, midi);
        allocations = count.getCount();
        // operator new of the test program allocates through malloc: count the rest.
        cAllocations = mallocs.getCount() - juce::jmin (mallocs.getCount(), allocations);
        mutexes = locks.getDistinctMutexes();
    }
    if (recordTimes)
        stats.blockNanoseconds.push_back (threadCpuNanoseconds() - start);

    stats.allocations += allocations;
    stats.cAllocations += cAllocations;
    auto& most = modWheel ? stats.mostMutexesWithModWheel : stats.mostMutexes;
    most = juce::jmax (most, mutexes);
    stats.blocks += 1;
    stats.samples += n;
    for (int ch = 0; ch < 2; ++ch)
    {
        const float* data = block.getReadPointer (ch);
        for (int i = 0; i < n; ++i)
        {
            if (! std::isfinite (data[i]))
                ++stats.nonFinite;
            else
                stats.peak = juce::jmax (stats.peak, std::abs (data[i]));
        }
    }
}

void StressRig::render (int n)
{
    emptyMidi.clear();
    render (n, emptyMidi);
}

juce::AudioProcessorParameter& StressRig::parameter (int index)
{
    return *instance->parameters.getParameter (parameterTable[index].id);
}

void StressRig::setParameter (int index, float value)
{
    auto* ranged = instance->parameters.getParameter (parameterTable[index].id);
    ranged->setValueNotifyingHost (ranged->convertTo0to1 (value));
}

void StressRig::setNormalised (int index, float normalised)
{
    parameter (index).setValueNotifyingHost (normalised);
}

void StressRig::randomiseParameters (juce::Random& random, int howMany)
{
    for (int i = 0; i < howMany; ++i)
    {
        const int index = random.nextInt (numParameters);
        // A third of the changes go to an end of the range, where most trouble lives.
        const int kind = random.nextInt (3);
        setNormalised (index, kind == 0 ? (float) random.nextInt (2) : random.nextFloat());
    }
}

double stressSeconds (double seconds)
{
#if defined(__SANITIZE_ADDRESS__)
    return seconds * 0.25;
#elif defined(__has_feature)
  #if __has_feature(address_sanitizer)
    return seconds * 0.25;
  #else
    return seconds;
  #endif
#else
    return seconds;
#endif
}

void reportCase (const juce::String& name, const StressStats& stats)
{
    std::printf ("stress | %-58s | %8lld blocks | %9lld samples | peak %10.4f | non-finite %lld | allocations %zu new, %zu malloc | mutexes %zu/%zu\n",
                 name.toRawUTF8(), (long long) stats.blocks, (long long) stats.samples, (double) stats.peak,
                 (long long) stats.nonFinite, stats.allocations, stats.cAllocations, stats.mostMutexes, stats.mostMutexesWithModWheel);
    std::fflush (stdout);
}
