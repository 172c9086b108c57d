// SPDX-License-Identifier: AGPL-3.0-or-later
// Drives a block delay and its tilt filter the way the processor's wet pass does, on plain vectors.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

#include "effects/BlockDelay.h"
#include "effects/TiltEqualiser.h"

struct DelayRig
{
    // Neutral settings: a 10 ms block at 48 kHz (480 samples), no modulation, full wet mix.
    static BlockDelay::Settings neutral (double sampleRate = 48000.0)
    {
        BlockDelay::Settings s {};
        s.time = 10.0f;
        s.sync = 0.0f;
        s.fmit = 0.0f;
        s.squeezeit = 0.0f;
        s.fdbk = 0.0f;
        s.envms = 2.0f;
        s.revmix = 1.0f;
        s.rev = 0.0f;
        s.hostBpm = 120.0;
        s.sampleRate = (float) sampleRate;
        return s;
    }

    explicit DelayRig (double rate = 48000.0, float tiltValue = 0.0f) : sampleRate (rate), tiltAmount (tiltValue)
    {
        delay->reset (sampleRate);
    }

    // Runs left/right through the delay in host blocks of blockSize, calling setupBlock before each.
    void run (std::vector<float>& left, std::vector<float>& right, const BlockDelay::Settings& s, int blockSize,
              bool delayOn = true)
    {
        juce::AudioBuffer<float> buffer (2, blockSize);
        const int total = (int) left.size();
        for (int start = 0; start < total; start += blockSize)
        {
            const int n = std::min (blockSize, total - start);
            delay->setupBlock (s);
            tilt.setupBlock (tiltAmount, sampleRate);
            buffer.copyFrom (0, 0, left.data() + start, n);
            buffer.copyFrom (1, 0, right.data() + start, n);
            delay->process (buffer, n, delayOn, s.revmix, tilt);
            std::copy (buffer.getReadPointer (0), buffer.getReadPointer (0) + n, left.begin() + start);
            std::copy (buffer.getReadPointer (1), buffer.getReadPointer (1) + n, right.begin() + start);
        }
    }

    // Mono convenience: the same signal on both channels, returns the left output.
    std::vector<float> runMono (std::vector<float> signal, const BlockDelay::Settings& s, int blockSize, bool delayOn = true)
    {
        auto right = signal;
        run (signal, right, s, blockSize, delayOn);
        return signal;
    }

    double sampleRate;
    float tiltAmount;
    std::unique_ptr<BlockDelay> delay = std::make_unique<BlockDelay>(); // 4 MB: never on the stack
    TiltEqualiser tilt;
};

inline int indexOfPeak (const std::vector<float>& x)
{
    int best = 0;
    for (int i = 1; i < (int) x.size(); ++i)
        if (std::abs (x[(size_t) i]) > std::abs (x[(size_t) best]))
            best = i;
    return best;
}

inline std::vector<float> whiteNoise (int length, int seed)
{
    juce::Random random (seed);
    std::vector<float> x ((size_t) length);
    for (auto& v : x)
        v = random.nextFloat() * 2.0f - 1.0f;
    return x;
}
