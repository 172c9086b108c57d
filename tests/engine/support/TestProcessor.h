// SPDX-License-Identifier: AGPL-3.0-or-later
// Builds the processor the way the plug-in wrapper does, with the framework's message thread set up,
// and drives it as a host does: parameters in their own units, blocks of audio with MIDI.
#pragma once

#include <juce_events/juce_events.h>
#include <memory>
#include <vector>

#include "core/KestruneAudioProcessor.h"

struct TestProcessor
{
    explicit TestProcessor (double sampleRate = 48000.0, int blockSize = 256)
    {
        processor->setRateAndBufferSizeDetails (sampleRate, blockSize);
        processor->prepareToPlay (sampleRate, blockSize);
    }

    void set (const std::vector<std::pair<const char*, float>>& values)
    {
        for (const auto& [id, value] : values)
        {
            auto* parameter = processor->parameters.getParameter (id);
            parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
        }
    }

    // Renders `blocks` blocks with `midi` in the first one and returns the left channel.
    std::vector<float> render (int blocks, const juce::MidiBuffer& midi = {}, int blockSize = 256)
    {
        std::vector<float> left;
        juce::AudioBuffer<float> buffer (2, blockSize);
        for (int b = 0; b < blocks; ++b)
        {
            auto events = b == 0 ? midi : juce::MidiBuffer();
            buffer.clear();
            processor->processBlock (buffer, events);
            left.insert (left.end(), buffer.getReadPointer (0), buffer.getReadPointer (0) + blockSize);
        }
        return left;
    }

    static juce::MidiBuffer noteOn (int key, int velocity = 100)
    {
        juce::MidiBuffer midi;
        midi.addEvent (juce::MidiMessage::noteOn (1, key, (juce::uint8) velocity), 0);
        return midi;
    }

    juce::ScopedJuceInitialiser_GUI gui;
    std::unique_ptr<KestruneAudioProcessor> processor = std::make_unique<KestruneAudioProcessor>();
};
