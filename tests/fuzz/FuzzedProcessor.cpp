// SPDX-License-Identifier: AGPL-3.0-or-later
// Shared set-up and post-conditions of the fuzz targets.
#include "fuzz/FuzzedProcessor.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{
constexpr int blockSize = 64;

[[noreturn]] void fail (const char* what, const char* detail, double value)
{
    std::fprintf (stderr, "fuzz check failed: %s (%s, %.9g)\n", what, detail, value);
    std::fflush (stderr);
    std::abort();
}
} // namespace

FuzzedProcessor& FuzzedProcessor::get()
{
    static FuzzedProcessor fuzzed;
    return fuzzed;
}

FuzzedProcessor::FuzzedProcessor() : instance (std::make_unique<KestruneAudioProcessor>())
{
    instance->setRateAndBufferSizeDetails (48000.0, blockSize);
    instance->prepareToPlay (48000.0, blockSize);
    buffer.setSize (2, blockSize);
    midi.ensureSize (1024);
}

void FuzzedProcessor::checkParameters (const char* when)
{
    for (const auto& row : parameterTable)
    {
        const float value = instance->getParameterValue (row.index);
        if (! std::isfinite (value) || value < (float) row.min || value > (float) row.max)
            fail (when, row.id, value);
    }
}

void FuzzedProcessor::checkAfterInput()
{
    checkParameters ("parameter out of range after state");

    // Notes start in one block and stop in the next, so voices, gain and every enabled effect see
    // the installed values.
    for (int b = 0; b < 2; ++b)
    {
        midi.clear();
        for (int note : { 36, 60, 84 })
            midi.addEvent (b == 0 ? juce::MidiMessage::noteOn (1, note, (juce::uint8) 127) : juce::MidiMessage::noteOff (1, note), b * (blockSize - 1));
        buffer.clear();
        instance->processBlock (buffer, midi);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < blockSize; ++i)
                if (! std::isfinite (buffer.getSample (ch, i)))
                    fail ("non-finite output after state", "sample", buffer.getSample (ch, i));
    }

    // Damaged text may carry a duplicate attribute, which the framework keeps in the tree and writes
    // back, so the first save need not restore exactly what the damaged text gave. From the first
    // save on, saving and restoring must be exact.
    juce::MemoryBlock saved;
    instance->getStateInformation (saved);
    instance->setStateInformation (saved.getData(), (int) saved.getSize());
    std::array<float, numParameters> before {};
    for (const auto& row : parameterTable)
        before[(size_t) row.index] = instance->getParameterValue (row.index);

    instance->getStateInformation (saved);
    instance->setStateInformation (saved.getData(), (int) saved.getSize());
    checkParameters ("parameter out of range after round trip");
    for (const auto& row : parameterTable)
    {
        // Skewed ranges map through the normalised value and back, which may move the last bit.
        const double difference = (double) instance->getParameterValue (row.index) - (double) before[(size_t) row.index];
        if (std::abs (difference) > (row.max - row.min) * 1.0e-6)
            fail ("saved state does not read back", row.id, difference);
    }
}
