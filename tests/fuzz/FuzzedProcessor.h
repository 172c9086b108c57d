// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor that every fuzz input is thrown at, built once per program, and the checks that
// must hold after each input: parameters finite and in range, audio finite, state that round-trips.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <juce_events/juce_events.h>

#include "core/KestruneAudioProcessor.h"

class FuzzedProcessor
{
public:
    static FuzzedProcessor& get();

    KestruneAudioProcessor& processor() { return *instance; }

    // Aborts with a message (a crash libFuzzer reports, and a failure for the driver) when a
    // parameter is outside its range or not finite, when a chord renders non-finite samples, or
    // when the state the processor saves does not read back to the same values.
    void checkAfterInput();

private:
    FuzzedProcessor();
    void checkParameters (const char* when);

    juce::ScopedJuceInitialiser_GUI framework;
    std::unique_ptr<KestruneAudioProcessor> instance;
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer midi;
};
