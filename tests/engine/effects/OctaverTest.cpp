// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver driven directly: shifted pitch, the mix, frames across block borders, its delay; its
// float transform against a direct DFT in double, and the tabled form against the step-by-step one;
// the vector bin passes against the library's calls on both instruction sets.
#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <random>

#include "effects/FloatFft.h"
#include "effects/Octaver.h"
#include "effects/PhaseVocoderKernel.h"
#include "engine/support/Listen.h"

namespace
{
constexpr double rate = 48000.0;

struct Run { std::vector<float> left, right; };

// Feeds `left` and `right` (the left signal when empty) in blocks; the mix is `mixBefore` up to `mixChangeAt`.
Run runOctaver (const std::vector<float>& left, int blockSize, float mix, float ratio, int preparedBlock = 0,
                const std::vector<float>& right = {}, size_t mixChangeAt = 0, float mixBefore = 0.0f)
{
    juce::ScopedNoDenormals noDenormals;
    auto octaver = std::make_unique<Octaver>();
    octaver->prepare (rate, preparedBlock > 0 ? preparedBlock : blockSize);
    Run run { left, right.empty() ? left : right };
    for (size_t start = 0; start < left.size(); start += (size_t) blockSize)
    {
        const int n = (int) std::min ((size_t) blockSize, left.size() - start);
        float* channels[] = { run.left.data() + start, run.right.data() + start };
        juce::AudioBuffer<float> wet (channels, 2, n);
        octaver->process (wet, n, start < mixChangeAt ? mixBefore : mix, ratio);
    }
    return run;
}

// A sine, faded in and out over `fade` samples when that is not 0.
std::vector<float> sine (double frequency, double amplitude, size_t length, size_t fade = 0)
{
    std::vector<float> x (length);
    for (size_t i = 0; i < length; ++i)
    {
        const double envelope = fade == 0 ? 1.0 : 0.5 - 0.5 * std::cos (M_PI * (double) std::min (i, length - i) / (double) fade);
        x[i] = (float) (amplitude * envelope * std::sin (2.0 * M_PI * frequency * (double) i / rate));
    }
    return x;
}

// Amplitude of the component at `frequency` from 8192 on, by correlation with a Hann-windowed phasor.
double amplitudeAt (const std::vector<float>& x, double frequency)
{
    const size_t from = 8192;
    double re = 0.0, im = 0.0, windowSum = 0.0;
    for (size_t i = from; i < x.size(); ++i)
    {
        const double w = 0.5 - 0.5 * std::cos (2.0 * M_PI * (double) (i - from) / (double) (x.size() - from));
        re += w * x[i] * std::cos (2.0 * M_PI * frequency * (double) i / rate);
        im += w * x[i] * std::sin (2.0 * M_PI * frequency * (double) i / rate);
        windowSum += w;
    }
    return 2.0 * std::hypot (re, im) / windowSum;
}

double energyCentroid (const std::vector<float>& x)
{
    double weighted = 0.0;
    for (size_t i = 0; i < x.size(); ++i)
        weighted += (double) x[i] * x[i] * (double) i;
    return weighted / listen::energy (x);
}
} // namespace

TEST (OctaverTest, SineComesOutAnOctaveDownOrUp)
{
    const auto input = sine (1000.0, 0.5, 48000);
    struct Case { float ratio; double expectedHz, otherOctaveHz; };
    for (const auto& c : { Case { 0.5f, 500.0, 2000.0 }, Case { 2.0f, 2000.0, 500.0 } })
    {
        const auto out = runOctaver (input, 256, 1.0f, c.ratio).left;
        const double shifted = amplitudeAt (out, c.expectedHz);
        EXPECT_GT (shifted, 0.2) << c.ratio;
        EXPECT_LT (amplitudeAt (out, 1000.0), shifted * 0.01) << c.ratio;
        EXPECT_LT (amplitudeAt (out, c.otherOctaveHz), shifted * 0.01) << c.ratio;
    }
}

TEST (OctaverTest, MixZeroLeavesTheSignalAndMixOneReplacesItByAMonoOctave)
{
    const auto left = sine (1000.0, 0.5, 24000), right = sine (1500.0, 0.3, 24000);
    for (const float ratio : { 0.5f, 2.0f })
    {
        const auto untouched = runOctaver (left, 256, 0.0f, ratio, 0, right);
        EXPECT_EQ (untouched.left, left) << ratio;
        EXPECT_EQ (untouched.right, right) << ratio;

        const auto replaced = runOctaver (left, 256, 1.0f, ratio, 0, right);
        EXPECT_EQ (replaced.left, replaced.right) << ratio;
        EXPECT_LT (amplitudeAt (replaced.left, 1000.0), 0.01) << ratio;
        EXPECT_LT (amplitudeAt (replaced.left, 1500.0), 0.01) << ratio;

        // The frames run on at mix 0, so turning the mix up mid-stream gives what a run at full mix
        // gives from then on.
        const auto switched = runOctaver (left, 256, 1.0f, ratio, 0, right, 8192, 0.0f);
        EXPECT_TRUE (std::equal (switched.left.begin() + 8192, switched.left.end(), replaced.left.begin() + 8192)) << ratio;
    }
}

TEST (OctaverTest, BlockSizeDoesNotChangeTheOutput)
{
    auto input = sine (330.0, 0.4, 20000);
    const auto noise = listen::whiteNoise (input.size(), 0.2f, 7);
    for (size_t i = 0; i < input.size(); ++i)
        input[i] += noise[i];

    struct Case { int blockSize, preparedBlock; };
    for (const float ratio : { 0.5f, 2.0f })
    {
        const auto reference = runOctaver (input, 256, 0.7f, ratio).left;
        for (const auto& c : { Case { 1, 1 }, Case { 7, 7 }, Case { 4096, 4096 }, Case { 4096, 256 }, Case { 100, 512 } })
            EXPECT_EQ (runOctaver (input, c.blockSize, 0.7f, ratio, c.preparedBlock).left, reference)
                << "ratio " << ratio << " block " << c.blockSize << " prepared " << c.preparedBlock;
    }
}

TEST (OctaverTest, ShiftedToneBurstComesOut2048SamplesLate)
{
    // The centre of a tone burst's energy moves by the frame path's delay, shifted either way.
    auto burst = sine (1000.0, 0.5, 4800, 2400);
    burst.insert (burst.begin(), 9600, 0.0f);
    burst.resize (32768, 0.0f);
    for (const float ratio : { 0.5f, 2.0f })
        EXPECT_NEAR (energyCentroid (runOctaver (burst, 256, 1.0f, ratio).left) - energyCentroid (burst), 2048.0, 64.0) << ratio;
}

TEST (FftTest, MatchesADirectDftAndTheTabledFormMatchesItBitForBit)
{
    std::mt19937 random (1234);
    std::normal_distribution<float> normal (0.0f, 1.0f);
    for (const long n : { 2L, 4L, 8L, 16L, 64L, 512L, 2048L, 8192L })
    {
        const FloatFft tabled (n);
        for (const long sign : { -1L, 1L })
        {
            // The third input spans sixty octaves of level, where a reordered sum would show.
            for (int trial = 0; trial < 3; ++trial)
            {
                std::vector<float> data ((size_t) (2 * n));
                for (auto& x : data)
                    x = trial == 2 ? std::ldexp (normal (random), (int) (random() % 60) - 30) : normal (random);
                const auto input = data;
                auto tabledResult = data;
                FloatFft::perform (data.data(), n, sign);
                tabled.transform (tabledResult.data(), sign);
                ASSERT_EQ (0, std::memcmp (tabledResult.data(), data.data(), data.size() * sizeof (float)))
                    << "n " << n << " sign " << sign << " trial " << trial;
                if (trial == 2 || n > 2048)
                    continue;

                // Float rounding grows about with log2 n; the bins' size grows with sqrt n.
                const double tolerance = 8e-6 * std::sqrt ((double) n) * std::log2 ((double) n + 1.0);
                double worst = 0.0;
                for (long k = 0; k < n; ++k)
                {
                    std::complex<double> expected = 0.0;
                    for (long t = 0; t < n; ++t)
                        expected += std::complex<double> (input[(size_t) (2 * t)], input[(size_t) (2 * t + 1)])
                                    * std::polar (1.0, (double) sign * 2.0 * M_PI * (double) ((k * t) % n) / (double) n);
                    worst = std::max (worst, std::abs (std::complex<double> (data[(size_t) (2 * k)], data[(size_t) (2 * k + 1)]) - expected));
                }
                EXPECT_LT (worst, tolerance) << "n " << n << " sign " << sign;
            }
        }
    }
}

// Phases of every size the synthesis accumulates (up to 2^33, past the vector reduction), phases just
// beside a quarter turn, empty bins, zeros of both signs and NaNs: the vector passes give the floats
// the library calls give.
template <class Arch>
void expectBinPassesMatchTheLibrary()
{
    std::mt19937 random (99);
    std::uniform_real_distribution<double> unit (0.0, 1.0);
    constexpr long n = 1025;
    std::vector<float> magnitude (n), phase (n), vectorOut (2 * n), scalarOut (2 * n);
    std::vector<double> re (n), im (n), last (n), bin (n), vectorPhase (n), vectorFrequency (n), phaseOut (n), frequencyOut (n);
    for (int frame = 0; frame < 400; ++frame)
    {
        for (long k = 0; k < n; ++k)
        {
            const auto pick = random() % 16;
            phase[(size_t) k] = pick == 0 ? std::nextafter ((float) ((double) random() * 1.5707963267948966), 0.0f)
                                          : (float) ((unit (random) - 0.5) * std::ldexp (1.0, (int) (random() % 34)));
            magnitude[(size_t) k] = pick == 1 ? 0.0f : (float) (unit (random) * 40.0);
            re[(size_t) k] = pick == 2 ? -0.0 : pick == 3 ? std::nan ("") : (double) (float) (unit (random) * 600.0 - 300.0);
            im[(size_t) k] = pick == 4 ? 0.0 : (double) (float) (unit (random) * 600.0 - 300.0);
            last[(size_t) k] = (double) (float) ((unit (random) - 0.5) * 6.28);
            bin[(size_t) k] = (double) k;
        }
        if (frame == 0)
            phase[5] = std::numeric_limits<float>::infinity();
        PhaseVocoderKernel {} (Arch {}, PhaseVocoderKernel::Synthesis { magnitude.data(), phase.data(), vectorOut.data(), n });
        const PhaseVocoderKernel::Analysis analysis { re.data(), im.data(), last.data(), bin.data(), vectorPhase.data(),
                                                      vectorFrequency.data(), n, M_PI / 4.0, 23.4375, 8.0 };
        PhaseVocoderKernel {} (Arch {}, analysis);
        auto scalar = analysis;
        scalar.phase = phaseOut.data();
        scalar.frequency = frequencyOut.data();
        for (long k = 0; k < n; ++k)
        {
            PhaseVocoderKernel::synthesiseBin ({ magnitude.data(), phase.data(), scalarOut.data(), n }, k);
            PhaseVocoderKernel::analyseBin (scalar, k);
            const float floats[] = { (float) vectorPhase[(size_t) k], (float) phaseOut[(size_t) k],
                                     (float) vectorFrequency[(size_t) k], (float) frequencyOut[(size_t) k] };
            ASSERT_EQ (0, std::memcmp (floats, floats + 1, sizeof (float))) << "phase of bin " << k;
            ASSERT_EQ (0, std::memcmp (floats + 2, floats + 3, sizeof (float))) << "frequency of bin " << k;
        }
        ASSERT_EQ (0, std::memcmp (vectorOut.data(), scalarOut.data(), vectorOut.size() * sizeof (float))) << "frame " << frame;
    }
}

TEST (OctaverTest, VectorBinPassesGiveTheLibrarysFloats)
{
    expectBinPassesMatchTheLibrary<xsimd::sse2>();
    if (xsimd::available_architectures().avx2)
        expectBinPassesMatchTheLibrary<xsimd::avx2>();
}
