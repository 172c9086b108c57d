// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver driven directly: shifted pitch, mix extremes, frames across block borders, its delay.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "effects/Octaver.h"

namespace
{
constexpr double rate = 48000.0;

struct Run
{
    std::vector<float> left, right;
};

// Feeds `input` to both wet channels (or `inputRight` to the right one) in blocks and collects the result.
Run runOctaver (const std::vector<float>& input, int blockSize, float mix, float ratio, int preparedBlock = 0,
                const std::vector<float>* inputRight = nullptr)
{
    juce::ScopedNoDenormals noDenormals;
    auto octaver = std::make_unique<Octaver>();
    octaver->prepare (rate, preparedBlock > 0 ? preparedBlock : blockSize);

    juce::AudioBuffer<float> wet (2, blockSize);
    Run run { std::vector<float> (input.size()), std::vector<float> (input.size()) };
    for (size_t start = 0; start < input.size(); start += (size_t) blockSize)
    {
        const int n = (int) std::min ((size_t) blockSize, input.size() - start);
        for (int i = 0; i < n; ++i)
        {
            wet.setSample (0, i, input[start + (size_t) i]);
            wet.setSample (1, i, inputRight != nullptr ? (*inputRight)[start + (size_t) i] : input[start + (size_t) i]);
        }
        octaver->process (wet, n, mix, ratio);
        for (int i = 0; i < n; ++i)
        {
            run.left[start + (size_t) i] = wet.getSample (0, i);
            run.right[start + (size_t) i] = wet.getSample (1, i);
        }
    }
    return run;
}

std::vector<float> sine (double frequency, double amplitude, size_t length)
{
    std::vector<float> x (length);
    for (size_t i = 0; i < length; ++i)
        x[i] = (float) (amplitude * std::sin (2.0 * M_PI * frequency * (double) i / rate));
    return x;
}

// Amplitude of the component at `frequency` in x[from, to), by correlation with a Hann-windowed phasor.
double amplitudeAt (const std::vector<float>& x, double frequency, size_t from, size_t to)
{
    double re = 0.0, im = 0.0, windowSum = 0.0;
    const double length = (double) (to - from);
    for (size_t i = from; i < to; ++i)
    {
        const double w = 0.5 - 0.5 * std::cos (2.0 * M_PI * (double) (i - from) / length);
        const double phase = 2.0 * M_PI * frequency * (double) i / rate;
        re += w * x[i] * std::cos (phase);
        im += w * x[i] * std::sin (phase);
        windowSum += w;
    }
    return 2.0 * std::hypot (re, im) / windowSum;
}

double energyCentroid (const std::vector<float>& x)
{
    double weighted = 0.0, total = 0.0;
    for (size_t i = 0; i < x.size(); ++i)
    {
        const double e = (double) x[i] * x[i];
        weighted += e * (double) i;
        total += e;
    }
    return weighted / total;
}
} // namespace

TEST (OctaverTest, WindowTableHoldsExactlyWhatTheFormulaGives)
{
    volatile long frame = 2048; // keeps the compiler from folding the cosines at build time
    for (long k = 0; k < 2048; ++k)
    {
        const double expected = 0.5 - 0.5 * std::cos (2.0 * M_PI * (double) k / (double) frame);
        ASSERT_EQ (Octaver::windowAt (k), expected) << k;
    }
}

TEST (OctaverTest, SineComesOutAnOctaveDownOrUp)
{
    struct Case
    {
        float ratio;
        double expectedFrequency;
    };
    const double inputFrequency = 1000.0;
    const auto input = sine (inputFrequency, 0.5, 48000);

    for (const auto& c : { Case { 0.5f, 500.0 }, Case { 2.0f, 2000.0 } })
    {
        const auto out = runOctaver (input, 256, 1.0f, c.ratio).left;
        const size_t from = 8192, to = out.size();
        const double shifted = amplitudeAt (out, c.expectedFrequency, from, to);
        const double original = amplitudeAt (out, inputFrequency, from, to);
        const double otherOctave = amplitudeAt (out, c.ratio > 1.0f ? 500.0 : 2000.0, from, to);
        std::printf ("[ octaver ] ratio %.1f: %.0f Hz amplitude %.4f, input frequency %.6f, other octave %.6f\n",
                     (double) c.ratio, c.expectedFrequency, shifted, original, otherOctave);
        EXPECT_GT (shifted, 0.2) << c.ratio;
        EXPECT_LT (original, shifted * 0.01) << c.ratio;
        EXPECT_LT (otherOctave, shifted * 0.01) << c.ratio;
    }
}

TEST (OctaverTest, MixZeroLeavesTheWetSignalAndMixOneReplacesItByAMonoOctave)
{
    const auto left = sine (1000.0, 0.5, 24000);
    const auto right = sine (1500.0, 0.3, 24000);

    for (const float ratio : { 0.5f, 2.0f })
    {
        const auto untouched = runOctaver (left, 256, 0.0f, ratio, 0, &right);
        EXPECT_EQ (untouched.left, left) << ratio;
        EXPECT_EQ (untouched.right, right) << ratio;

        const auto replaced = runOctaver (left, 256, 1.0f, ratio, 0, &right);
        EXPECT_EQ (replaced.left, replaced.right) << ratio;
        EXPECT_LT (amplitudeAt (replaced.left, 1000.0, 8192, 24000), 0.01) << ratio;
        EXPECT_LT (amplitudeAt (replaced.left, 1500.0, 8192, 24000), 0.01) << ratio;
    }
}

TEST (OctaverTest, VocoderRunsOnAtMixZero)
{
    // The frames do not depend on the mix, so turning the mix up mid-stream gives what a run at full
    // mix gives from then on.
    const auto input = sine (440.0, 0.5, 16384);
    const int switchAt = 8192;

    juce::ScopedNoDenormals noDenormals;
    auto octaver = std::make_unique<Octaver>();
    octaver->prepare (rate, 256);
    juce::AudioBuffer<float> wet (2, 256);
    std::vector<float> out;
    for (int start = 0; start < (int) input.size(); start += 256)
    {
        for (int i = 0; i < 256; ++i)
            for (int ch = 0; ch < 2; ++ch)
                wet.setSample (ch, i, input[(size_t) (start + i)]);
        octaver->process (wet, 256, start < switchAt ? 0.0f : 1.0f, 0.5f);
        for (int i = 0; i < 256; ++i)
            out.push_back (wet.getSample (0, i));
    }

    const auto reference = runOctaver (input, 256, 1.0f, 0.5f).left;
    for (size_t i = (size_t) switchAt; i < input.size(); ++i)
        ASSERT_EQ (out[i], reference[i]) << i;
}

TEST (OctaverTest, BlockSizeDoesNotChangeTheOutput)
{
    std::mt19937 random (7);
    std::normal_distribution<float> noise (0.0f, 0.1f);
    auto input = sine (330.0, 0.4, 20000);
    for (auto& x : input)
        x += noise (random);

    struct Case
    {
        int blockSize;
        int preparedBlock;
    };
    for (const float ratio : { 0.5f, 2.0f })
    {
        const auto reference = runOctaver (input, 256, 0.7f, ratio).left;
        for (const auto& c : { Case { 1, 1 }, Case { 7, 7 }, Case { 4096, 4096 }, Case { 4096, 256 }, Case { 100, 512 } })
        {
            const auto out = runOctaver (input, c.blockSize, 0.7f, ratio, c.preparedBlock).left;
            EXPECT_EQ (out, reference) << "ratio " << ratio << " block " << c.blockSize << " prepared " << c.preparedBlock;
        }
    }
}

TEST (OctaverTest, MeasuredDelayOfTheFramePathIs2048Samples)
{
    // With the bins left in place the vocoder resynthesises its input, so an impulse shows the path's
    // delay directly.
    std::vector<float> impulse (16384, 0.0f);
    const size_t at = 5000;
    impulse[at] = 0.5f;
    const auto out = runOctaver (impulse, 256, 1.0f, 1.0f).left;
    size_t peak = 0;
    for (size_t i = 0; i < out.size(); ++i)
        if (std::abs (out[i]) > std::abs (out[peak]))
            peak = i;
    std::printf ("[ octaver ] impulse delay %zu samples, peak %.4f\n", peak - at, (double) out[peak]);
    EXPECT_EQ (peak - at, 2048u);
    // Hann analysis and synthesis at 8 times overlap with the doubled one-sided magnitudes give 1.5.
    EXPECT_NEAR (out[peak], 0.75f, 0.02f);

    // A tone burst shifted down: the centre of its energy moves by the same delay.
    std::vector<float> burst (32768, 0.0f);
    const size_t centre = 12000, halfLength = 2400;
    for (size_t i = centre - halfLength; i < centre + halfLength; ++i)
    {
        const double envelope = 0.5 - 0.5 * std::cos (M_PI * (double) (i - (centre - halfLength)) / (double) halfLength);
        burst[i] = (float) (0.5 * envelope * std::sin (2.0 * M_PI * 1000.0 * (double) i / rate));
    }
    for (const float ratio : { 0.5f, 2.0f })
    {
        const double shift = energyCentroid (runOctaver (burst, 256, 1.0f, ratio).left) - energyCentroid (burst);
        std::printf ("[ octaver ] ratio %.1f burst delay %.1f samples\n", (double) ratio, shift);
        EXPECT_NEAR (shift, 2048.0, 64.0) << ratio;
    }
}
