// SPDX-License-Identifier: AGPL-3.0-or-later
// Shared set-up and post-conditions of the fuzz targets.
#include "fuzz/FuzzedProcessor.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{
constexpr double sampleRate = 48000.0;
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
    instance->setRateAndBufferSizeDetails (sampleRate, blockSize);
    instance->prepareToPlay (sampleRate, blockSize);
    buffer.setSize (2, blockSize);
    midi.ensureSize (1024);
}

juce::MemoryBlock FuzzedProcessor::frameAsStateBlock (const std::uint8_t* data, std::size_t size)
{
    juce::MemoryOutputStream out;
    out.writeInt (0x21324356);
    out.writeInt ((int) size);
    out.write (data, size);
    out.writeByte (0);
    return out.getMemoryBlock();
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

void FuzzedProcessor::renderChord()
{
    // Two blocks: notes start in the first, stop in the second, so voices, gain and every
    // enabled effect see the installed values.
    for (int b = 0; b < 2; ++b)
    {
        midi.clear();
        for (int note : { 36, 60, 84 })
            midi.addEvent (b == 0 ? juce::MidiMessage::noteOn (1, note, (juce::uint8) 127)
                                  : juce::MidiMessage::noteOff (1, note),
                           b == 0 ? 0 : blockSize - 1);
        buffer.clear();
        instance->processBlock (buffer, midi);
        for (int ch = 0; ch < buffer.getNumChannels(); ++ch)
            for (int i = 0; i < blockSize; ++i)
                if (! std::isfinite (buffer.getSample (ch, i)))
                    fail ("non-finite output after state", "sample", buffer.getSample (ch, i));
    }
}

void FuzzedProcessor::checkAfterInput()
{
    checkParameters ("parameter out of range after state");
    renderChord();

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
        const double tolerance = (row.max - row.min) * 1.0e-6;
        const float after = instance->getParameterValue (row.index);
        if (std::abs ((double) after - (double) before[(size_t) row.index]) > tolerance)
            fail ("saved state does not read back", row.id, (double) after - (double) before[(size_t) row.index]);
    }
}
