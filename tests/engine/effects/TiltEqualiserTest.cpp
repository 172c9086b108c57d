// SPDX-License-Identifier: AGPL-3.0-or-later
// Tilt equaliser: spectral shape over its range, corners at neutral, and when its coefficients are rebuilt.
#include <gtest/gtest.h>

#include <juce_dsp/juce_dsp.h>

#include <cmath>

#include "DelayRig.h"

namespace
{
std::vector<float> tilted (TiltEqualiser& tilt, const std::vector<float>& x, int channel = 0)
{
    std::vector<float> y (x.size());
    for (size_t i = 0; i < x.size(); ++i)
        y[i] = tilt.processSample (channel, x[i]);
    return y;
}

struct BandEnergies { double low, mid, high; };

// Mean power per FFT bin in three bands, averaged over Hann-windowed frames.
BandEnergies bandEnergies (const std::vector<float>& x, double sampleRate)
{
    constexpr int order = 12;
    constexpr int size = 1 << order;
    juce::dsp::FFT fft (order);
    juce::dsp::WindowingFunction<float> window (size, juce::dsp::WindowingFunction<float>::hann, false);
    std::vector<float> frame (2 * size);
    std::vector<double> power (size / 2 + 1, 0.0);
    for (size_t start = size; start + size <= x.size(); start += size) // skip the filters' settling
    {
        std::fill (frame.begin(), frame.end(), 0.0f);
        std::copy (x.begin() + (long) start, x.begin() + (long) (start + size), frame.begin());
        window.multiplyWithWindowingTable (frame.data(), size);
        fft.performFrequencyOnlyForwardTransform (frame.data(), true);
        for (int k = 0; k <= size / 2; ++k)
            power[(size_t) k] += (double) frame[(size_t) k] * frame[(size_t) k];
    }
    auto band = [&] (double fromHz, double toHz)
    {
        const int from = (int) std::ceil (fromHz * size / sampleRate);
        const int to = (int) std::floor (toHz * size / sampleRate);
        double sum = 0.0;
        for (int k = from; k <= to; ++k)
            sum += power[(size_t) k];
        return sum / (to - from + 1);
    };
    return { band (40.0, 150.0), band (1000.0, 2000.0), band (6000.0, 9000.0) };
}

double sineGain (TiltEqualiser& tilt, double hz, double sampleRate)
{
    const int length = (int) sampleRate * 2;
    std::vector<float> x ((size_t) length);
    for (int i = 0; i < length; ++i)
        x[(size_t) i] = (float) std::sin (2.0 * M_PI * hz * i / sampleRate);
    const auto y = tilted (tilt, x);
    double in = 0.0, out = 0.0;
    for (int i = length / 2; i < length; ++i)
    {
        in += (double) x[(size_t) i] * x[(size_t) i];
        out += (double) y[(size_t) i] * y[(size_t) i];
    }
    return std::sqrt (out / in);
}
} // namespace

TEST (TiltEqualiser, TiltsANoiseSpectrumTowardsLowsOrHighs)
{
    const auto noise = whiteNoise (1 << 17, 21);
    BandEnergies e[3];
    const float tilts[] = { -1.0f, 0.0f, 1.0f };
    for (int t = 0; t < 3; ++t)
    {
        TiltEqualiser tilt;
        tilt.setupBlock (tilts[t], 48000.0);
        e[t] = bandEnergies (tilted (tilt, noise), 48000.0);
    }
    const auto& down = e[0];
    const auto& flat = e[1];
    const auto& up = e[2];

    // Neutral: 20 Hz to 10 kHz, so lows and mids come through alike and the highs nearly so.
    EXPECT_NEAR (flat.low / flat.mid, 1.0, 0.25);
    EXPECT_GT (flat.high / flat.mid, 0.5);
    // -1 pulls the top corner down to 400 Hz: highs fall far more than mids, lows stay.
    EXPECT_LT (down.high, flat.high * 0.01);
    EXPECT_LT (down.mid, flat.mid * 0.2);
    EXPECT_NEAR (down.low / flat.low, 1.0, 0.25);
    // +1 lifts the bottom corner to 420 Hz: lows fall, mids and highs stay.
    EXPECT_LT (up.low, flat.low * 0.25);
    EXPECT_NEAR (up.mid / flat.mid, 1.0, 0.25);
    EXPECT_NEAR (up.high / flat.high, 1.0, 0.1);
    // The balance of highs against lows rises monotonically with the setting.
    EXPECT_LT (down.high / down.low, flat.high / flat.low);
    EXPECT_LT (flat.high / flat.low, up.high / up.low);
}

TEST (TiltEqualiser, NeutralCornersSitAt20HzAnd10kHz)
{
    struct Case { double hz, gain, tolerance; };
    for (const auto& c : { Case { 1000.0, 1.0, 0.02 }, Case { 20.0, std::sqrt (0.5), 0.03 }, Case { 10000.0, std::sqrt (0.5), 0.1 } })
    {
        TiltEqualiser tilt;
        tilt.setupBlock (0.0f, 48000.0);
        EXPECT_NEAR (sineGain (tilt, c.hz, 48000.0), c.gain, c.tolerance) << c.hz;
    }
}

TEST (TiltEqualiser, RebuildsOnlyWhenTiltMovesByMoreThanAThousandth)
{
    const auto noise = whiteNoise (4096, 2);
    auto render = [&] (const std::vector<std::pair<float, double>>& setups, bool invalidateBeforeLast)
    {
        TiltEqualiser tilt;
        for (size_t i = 0; i < setups.size(); ++i)
        {
            if (invalidateBeforeLast && i + 1 == setups.size())
                tilt.invalidate();
            tilt.setupBlock (setups[i].first, setups[i].second);
        }
        return tilted (tilt, noise, 1);
    };
    const auto at02 = render ({ { 0.2f, 48000.0 } }, false);
    const auto at02009 = render ({ { 0.2009f, 48000.0 } }, false);
    const auto at02011 = render ({ { 0.2011f, 48000.0 } }, false);
    ASSERT_NE (at02, at02009);

    struct Case { const char* what; std::vector<std::pair<float, double>> setups; bool invalidate; const std::vector<float>* expected; };
    const Case cases[] = {
        { "a move of 0.0009 keeps the old corners", { { 0.2f, 48000.0 }, { 0.2009f, 48000.0 } }, false, &at02 },
        { "small moves do not add up", { { 0.2f, 48000.0 }, { 0.2009f, 48000.0 }, { 0.1991f, 48000.0 }, { 0.2009f, 48000.0 } }, false, &at02 },
        { "a move of 0.0011 rebuilds", { { 0.2f, 48000.0 }, { 0.2011f, 48000.0 } }, false, &at02011 },
        { "a new sample rate alone keeps the old corners", { { 0.2f, 48000.0 }, { 0.2f, 96000.0 } }, false, &at02 },
        { "after invalidation even a tiny move rebuilds", { { 0.2f, 48000.0 }, { 0.2009f, 48000.0 } }, true, &at02009 },
    };
    for (const auto& c : cases)
        EXPECT_EQ (render (c.setups, c.invalidate), *c.expected) << c.what;
}
