// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor's own block loop: held-note gain and the DC blocker.
#include <gtest/gtest.h>

#include "core/DcBlocker.h"
#include "support/Listen.h"
#include "support/TestProcessor.h"

TEST (BlockLoop, HeldNoteCountSetsThePolyphonyGain)
{
    TestProcessor t (48000.0, 64);
    auto& p = *t.processor;
    using Events = std::vector<std::pair<juce::MidiMessage, int>>;
    const auto on = [] (int note, int velocity = 90) { return juce::MidiMessage::noteOn (1, note, (juce::uint8) velocity); };
    const auto off = [] (int note) { return juce::MidiMessage::noteOff (1, note); };

    // Nine notes on and off in one block; then a note-off never preceded by its note-on drives the
    // count below zero; a note-on of velocity 0 counts as a note-off; events past the block's end
    // are not counted.
    Events nine;
    for (int i = 0; i < 9; ++i)
        nine.insert (nine.end(), { { on (60 + i), i }, { off (60 + i), 30 + i } });
    const std::tuple<Events, int, float> steps[] = {
        { nine, 0, 1.0f },
        { { { off (40), 0 } }, -1, 1.0f },
        { { { on (50), 10 } }, 0, 1.0f },
        { { { on (51), 10 } }, 1, 1.0f },
        { { { on (52), 10 } }, 2, 0.5f },
        { { { on (53), 10 } }, 3, 1.0f / 3.0f },
        { { { off (53), 10 } }, 2, 0.5f },
        { { { on (52, 0), 3 }, { on (70), 100 } }, 1, 1.0f },
    };
    for (const auto& [events, held, target] : steps)
    {
        juce::MidiBuffer midi;
        for (const auto& [message, position] : events)
            midi.addEvent (message, position);
        t.render (1, midi, 64);
        EXPECT_EQ (p.getHeldNotes(), held);
        EXPECT_FLOAT_EQ (p.getPolyGainTarget(), target) << "held " << held;
    }
}

TEST (BlockLoop, DcBlockerRemovesOffsetAndPassesAudio)
{
    for (const double rate : { 22050.0, 48000.0, 192000.0 })
    {
        DcBlocker dc;
        dc.prepare (rate);
        float y = 0.0f;
        for (int i = 0; i < (int) rate; ++i)
            y = dc.process (0.5f);
        EXPECT_EQ (y, 0.0f) << "a one-second DC offset decays and flushes to zero at " << rate;

        std::vector<float> tone ((size_t) rate);
        for (size_t i = 0; i < tone.size(); ++i)
            tone[i] = dc.process ((float) std::sin (2.0 * juce::MathConstants<double>::pi * 1000.0 * (double) i / rate));
        EXPECT_NEAR (listen::rms (tone, tone.size() / 10, tone.size() * 9 / 10), std::sqrt (0.5), 0.0035) << rate;
    }
}
