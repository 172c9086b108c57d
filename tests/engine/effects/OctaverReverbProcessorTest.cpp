// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver and reverb inside the processor: preparation at changing rates and odd block sizes.
#include <gtest/gtest.h>

#include <cmath>

#include "engine/support/TestProcessor.h"

namespace
{
void setParameter (KestruneAudioProcessor& processor, const char* id, float value)
{
    auto* parameter = processor.parameters.getParameter (id);
    ASSERT_NE (parameter, nullptr) << id;
    parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
}
} // namespace

TEST (OctaverReverbProcessorTest, RepreparingAtOtherRatesAndBlockSizesKeepsTheOutputFiniteAndLatencyZero)
{
    TestProcessor test (44100.0, 256);
    auto& processor = *test.processor;
    setParameter (processor, "bp1", 1.0f);
    setParameter (processor, "reverb", 1.0f);
    setParameter (processor, "octave", 1.0f);

    struct Case
    {
        double rate;
        int blockSize;
    };
    for (const auto& c : { Case { 44100.0, 256 }, Case { 96000.0, 7 }, Case { 22050.0, 1 }, Case { 192000.0, 4096 } })
    {
        processor.setRateAndBufferSizeDetails (c.rate, c.blockSize);
        processor.prepareToPlay (c.rate, c.blockSize);
        EXPECT_EQ (processor.getLatencySamples(), 0);

        juce::AudioBuffer<float> buffer (2, c.blockSize);
        juce::MidiBuffer midi;
        const int blocks = 8192 / c.blockSize + 2;
        for (int b = 0; b < blocks; ++b)
        {
            if (b == 0)
                midi.addEvent (juce::MidiMessage::noteOn (1, 60, (juce::uint8) 100), 0);
            buffer.clear();
            processor.processBlock (buffer, midi);
            for (int ch = 0; ch < 2; ++ch)
                for (int i = 0; i < c.blockSize; ++i)
                    ASSERT_TRUE (std::isfinite (buffer.getSample (ch, i))) << c.rate << " block " << c.blockSize;
        }
    }
}
