// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor that every fuzz input is thrown at, built once per program, and the checks that must
// hold after each input. A failed check aborts with a message: a crash libFuzzer reports, and a
// failure for the replaying driver.
#pragma once

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "engine/support/TestProcessor.h"

class FuzzedProcessor
{
public:
    static KestruneAudioProcessor& get()
    {
        static TestProcessor fuzzed (48000.0, 64);
        return *fuzzed.processor;
    }

    // Parameters finite and in range, a chord renders finite samples, and the state the processor
    // saves reads back to the same values.
    static void checkAfterInput()
    {
        auto& p = get();
        checkParameters ("parameter out of range after state");
        juce::AudioBuffer<float> buffer (2, 64);
        for (int b = 0; b < 2; ++b) // notes start in one block and stop in the next
        {
            juce::MidiBuffer midi;
            for (int note : { 36, 60, 84 })
                midi.addEvent (b == 0 ? juce::MidiMessage::noteOn (1, note, (juce::uint8) 127) : juce::MidiMessage::noteOff (1, note), b * 63);
            buffer.clear();
            p.processBlock (buffer, midi);
            for (int ch = 0; ch < 2; ++ch)
                for (int i = 0; i < 64; ++i)
                    if (! std::isfinite (buffer.getSample (ch, i)))
                        fail ("non-finite output after state", "sample", buffer.getSample (ch, i));
        }

        // Damaged text may carry a duplicate attribute, which the framework keeps and writes back, so
        // only from the first save on must saving and restoring be exact.
        juce::MemoryBlock saved;
        p.getStateInformation (saved);
        p.setStateInformation (saved.getData(), (int) saved.getSize());
        std::array<float, numParameters> before {};
        for (const auto& row : parameterTable)
            before[(size_t) row.index] = p.getParameterValue (row.index);
        p.getStateInformation (saved);
        p.setStateInformation (saved.getData(), (int) saved.getSize());
        checkParameters ("parameter out of range after round trip");
        for (const auto& row : parameterTable)
        {
            // Skewed ranges map through the normalised value and back, which may move the last bit.
            const double difference = (double) p.getParameterValue (row.index) - (double) before[(size_t) row.index];
            if (std::abs (difference) > (row.max - row.min) * 1.0e-6)
                fail ("saved state does not read back", row.id, difference);
        }
    }

private:
    static void checkParameters (const char* when)
    {
        for (const auto& row : parameterTable)
            if (const float value = get().getParameterValue (row.index); ! std::isfinite (value) || value < (float) row.min || value > (float) row.max)
                fail (when, row.id, value);
    }

    [[noreturn]] static void fail (const char* what, const char* detail, double value)
    {
        std::fprintf (stderr, "fuzz check failed: %s (%s, %.9g)\n", what, detail, value);
        std::fflush (stderr);
        std::abort();
    }
};
