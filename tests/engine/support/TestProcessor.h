// SPDX-License-Identifier: AGPL-3.0-or-later
// Builds the processor the way the plug-in wrapper does, with the framework's message thread set up.
#pragma once

#include <juce_events/juce_events.h>
#include <memory>

#include "core/KestruneAudioProcessor.h"

struct TestProcessor
{
    explicit TestProcessor (double sampleRate = 48000.0, int blockSize = 256)
    {
        processor = std::make_unique<KestruneAudioProcessor>();
        processor->setRateAndBufferSizeDetails (sampleRate, blockSize);
        processor->prepareToPlay (sampleRate, blockSize);
    }

    juce::ScopedJuceInitialiser_GUI gui;
    std::unique_ptr<KestruneAudioProcessor> processor;
};
