// SPDX-License-Identifier: AGPL-3.0-or-later
// Drives the processor as a demanding host would and records what each block did: the output's
// peak and non-finite samples, heap allocations on the calling thread, and the thread's CPU time.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

struct StressStats
{
    std::int64_t blocks = 0;
    std::int64_t samples = 0;
    std::int64_t nonFinite = 0;
    std::size_t allocations = 0;  // operator new
    std::size_t cAllocations = 0; // malloc and its kin called directly (the framework's buffers and arrays)
    float peak = 0.0f;
    // Most distinct mutexes one processBlock locked, in blocks without and with a mod-wheel message.
    std::size_t mostMutexes = 0;
    std::size_t mostMutexesWithModWheel = 0;
    std::vector<double> blockNanoseconds; // thread CPU time of each processBlock call

    void merge (const StressStats& other);
};

class StressRig
{
public:
    StressRig (double sampleRate, int maxBlockSize);

    KestruneAudioProcessor& processor() { return *instance; }
    double getSampleRate() const { return sampleRate; }
    int getMaxBlockSize() const { return maxBlockSize; }

    // releaseResources, then prepareToPlay with the new figures, as a host does on a settings change.
    void reprepare (double newSampleRate, int newMaxBlockSize);

    // One processBlock of n samples (1 to the prepared maximum) with the given MIDI; the buffer
    // starts cleared, as a host's instrument bus does.
    void render (int n, juce::MidiBuffer& midi);
    void render (int n);

    // Through the parameter objects, in the plug-in's own units, the way a host automates.
    void setParameter (int index, float value);
    void setNormalised (int index, float normalised);
    void randomiseParameters (juce::Random& random, int howMany);

    juce::AudioProcessorParameter& parameter (int index);

    StressStats stats;
    bool recordTimes = false;

private:
    double sampleRate;
    int maxBlockSize;
    juce::ScopedJuceInitialiser_GUI framework;
    std::unique_ptr<KestruneAudioProcessor> instance;
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer emptyMidi;
};

// Duration scale for the suite: sanitized builds run the same cases on fewer seconds of audio.
double stressSeconds (double seconds);

// One line per case on stdout, so the run's log lists the peaks.
void reportCase (const juce::String& name, const StressStats& stats);
