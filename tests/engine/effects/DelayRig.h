// SPDX-License-Identifier: AGPL-3.0-or-later
// Drives a block delay and its tilt filter the way the processor's wet pass does, on plain vectors.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

#include "effects/BlockDelay.h"
#include "effects/TiltEqualiser.h"
#include "engine/support/Listen.h"

struct DelayRig
{
    // Neutral settings: a 10 ms block at 48 kHz (480 samples), no modulation, full wet mix.
    static BlockDelay::Settings neutral (double sampleRate = 48000.0)
    {
        return { 10.0f, 0.0f, 0.0f, 0.0f, 0.0f, 2.0f, 1.0f, 0.0f, 120.0, (float) sampleRate };
    }

    explicit DelayRig (double rate = 48000.0) : sampleRate (rate) { delay->reset (sampleRate); }

    // Runs the same signal on both channels in host blocks of blockSize and returns the left output.
    std::vector<float> runMono (std::vector<float> x, const BlockDelay::Settings& s, int blockSize, bool delayOn = true)
    {
        juce::AudioBuffer<float> buffer (2, blockSize);
        for (int start = 0; start < (int) x.size(); start += blockSize)
        {
            const int n = std::min (blockSize, (int) x.size() - start);
            delay->setupBlock (s);
            tilt.setupBlock (0.0f, sampleRate);
            for (int ch = 0; ch < 2; ++ch)
                buffer.copyFrom (ch, 0, x.data() + start, n);
            delay->process (buffer, n, delayOn, s.revmix, tilt);
            std::copy (buffer.getReadPointer (0), buffer.getReadPointer (0) + n, x.begin() + start);
        }
        return x;
    }

    double sampleRate;
    std::unique_ptr<BlockDelay> delay = std::make_unique<BlockDelay>(); // 4 MB: never on the stack
    TiltEqualiser tilt;
};
