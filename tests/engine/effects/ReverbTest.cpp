// SPDX-License-Identifier: AGPL-3.0-or-later
// The reverb stage driven directly with its DC blockers: dry path, pre-delay, decay, high-pass and
// long-run level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <thread>

#include "effects/ReverbStage.h"
#include "effects/UnseededRand.h"
#include "engine/support/Listen.h"

namespace
{
struct Stereo
{
    std::vector<float> left, right;
    Stereo part (size_t from, size_t to) const { return { { left.begin() + (long) from, left.begin() + (long) to }, { right.begin() + (long) from, right.begin() + (long) to } }; }
    bool finite() const { return listen::allFinite (left) && listen::allFinite (right); }
};

// The stage and its DC blockers, prepared unless the rate is 0.
struct ReverbRig
{
    explicit ReverbRig (double sampleRate) { prepare (sampleRate); }

    void prepare (double sampleRate)
    {
        if (sampleRate > 0.0)
            stage->prepare (sampleRate), dcLeft.prepare (sampleRate), dcRight.prepare (sampleRate);
    }

    Stereo run (Stereo x, float reverb)
    {
        juce::ScopedNoDenormals noDenormals;
        for (size_t start = 0; start < x.left.size(); start += 256)
        {
            float* channels[] = { x.left.data() + start, x.right.data() + start };
            const int n = (int) std::min ((size_t) 256, x.left.size() - start);
            juce::AudioBuffer<float> block (channels, 2, n);
            stage->process (block, n, reverb, dcLeft, dcRight);
        }
        return x;
    }

    std::unique_ptr<ReverbStage> stage = std::make_unique<ReverbStage>();
    DcBlocker dcLeft, dcRight;
};

// What the stage passes when its mix is 0: the input through a fresh pair of DC blockers.
Stereo dcBlocked (Stereo x, double rate)
{
    DcBlocker left, right;
    if (rate > 0.0)
        left.prepare (rate), right.prepare (rate);
    for (size_t i = 0; i < x.left.size(); ++i)
        x.left[i] = left.process (x.left[i]), x.right[i] = right.process (x.right[i]);
    return x;
}

// The reverb's own contribution at full `reverb`: output minus the 10% of blocked dry signal.
Stereo wetOnly (ReverbRig& rig, const Stereo& input, double rate)
{
    const auto dry = dcBlocked (input, rate);
    auto wet = rig.run (input, 1.0f);
    for (size_t i = 0; i < wet.left.size(); ++i)
        wet.left[i] -= (1.0f - 0.9f) * dry.left[i], wet.right[i] -= (1.0f - 0.9f) * dry.right[i];
    return wet;
}

Stereo impulse (size_t length)
{
    std::vector<float> x (length, 0.0f);
    x[0] = 1.0f;
    return { x, x };
}

Stereo noise (size_t length, float level, int seed) { return { listen::whiteNoise (length, level, seed), listen::whiteNoise (length, level, seed + 1000) }; }

// Second-order band-pass, 0 dB at the centre, about an octave wide.
std::vector<float> bandPass (std::vector<float> x, double centre, double rate)
{
    const double w0 = 2.0 * M_PI * centre / rate, alpha = std::sin (w0) / (2.0 * std::sqrt (2.0)), a0 = 1.0 + alpha;
    const double b0 = alpha / a0, a1 = -2.0 * std::cos (w0) / a0, a2 = (1.0 - alpha) / a0;
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (auto& v : x)
    {
        const double out = b0 * (v - x2) - a1 * y1 - a2 * y2;
        x2 = x1, x1 = v, y2 = y1, y1 = out;
        v = (float) out;
    }
    return x;
}

// Decay time from the backward-integrated energy, extrapolated from its fall between -5 and -25 dB.
double rt60Seconds (const std::vector<float>& x, double rate)
{
    std::vector<double> energy (x.size() + 1, 0.0);
    for (size_t i = x.size(); i-- > 0;)
        energy[i] = energy[i + 1] + (double) x[i] * x[i];
    const auto at = [&] (double db) { return (size_t) (std::find_if (energy.begin(), energy.end(), [&] (double e) { return e <= energy[0] * std::pow (10.0, db / 10.0); }) - energy.begin()); };
    return 3.0 * (double) (at (-25.0) - at (-5.0)) / rate;
}
} // namespace

TEST (ReverbTest, DryPathIsExactlyTheDcBlockedSignal)
{
    // At reverb 0 the networks run on but are not heard; a stage never prepared passes the signal
    // whatever the mix.
    struct Case { const char* name; double rate; size_t fullMixFirst; float reverb; };
    for (const auto& c : { Case { "reverb 0 after a full-mix start", 48000.0, 2400, 0.0f }, Case { "unprepared", 0.0, 0, 1.0f } })
    {
        ReverbRig rig (c.rate);
        const auto input = noise (4800, 0.8f, 1);
        rig.run (input.part (0, c.fullMixFirst), 1.0f);
        const auto out = rig.run (input.part (c.fullMixFirst, 4800), c.reverb);
        const auto expected = dcBlocked (input, c.rate).part (c.fullMixFirst, 4800);
        EXPECT_EQ (out.left, expected.left) << c.name;
        EXPECT_EQ (out.right, expected.right) << c.name;
    }
}

TEST (ReverbTest, TailStartsAfter40MsAtEveryRateAndAfterEveryPrepare)
{
    // One stage prepared again and again: the old tail and pre-delay contents must not carry over.
    ReverbRig rig (48000.0);
    rig.run (noise (24000, 0.5f, 3), 1.0f);
    for (const double rate : { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0 })
    {
        SCOPED_TRACE (rate);
        rig.prepare (rate);
        const auto length = (size_t) rate;
        const auto wet = wetOnly (rig, impulse (length), rate);
        const auto preDelay = (size_t) ((float) rate * 40.0 / 1000.0);

        size_t first = 0;
        while (first < length && std::abs (wet.left[first]) + std::abs (wet.right[first]) <= 0.0f)
            ++first;
        EXPECT_GT (first, preDelay);
        EXPECT_LT (first, preDelay + (size_t) (rate * 0.2));
        EXPECT_TRUE (wet.finite());
        EXPECT_GT (listen::rms (wet.left, length / 2, length / 2), 2e-5);
        EXPECT_NE (wet.left, wet.right);
    }
}

TEST (ReverbTest, DetuningsFollowTheUnseededCSequenceWhateverElseSeedsIt)
{
    std::srand (77); // as the host and the module code do
    UnseededRand::restart();
    int values[3] {};
    UnseededRand::draw (values, 3);
    EXPECT_EQ (values[0], 1804289383);
    EXPECT_EQ (values[1], 846930886);
    EXPECT_EQ (values[2], 1681692777);

    // Instances preparing on several threads each take a whole run of thirty: the ones a lone
    // process would draw, in some order.
    UnseededRand::restart();
    std::vector<int> expected (8 * 30);
    UnseededRand::draw (expected.data(), expected.size());
    UnseededRand::restart();
    std::vector<std::vector<int>> runs (8, std::vector<int> (30));
    std::vector<std::thread> threads;
    for (auto& run : runs)
        threads.emplace_back ([&run] { UnseededRand::draw (run.data(), run.size()); });
    for (auto& thread : threads)
        thread.join();
    std::sort (runs.begin(), runs.end(), [] (const auto& a, const auto& b) { return a[0] < b[0]; });
    for (const auto& run : runs)
    {
        const auto start = std::find (expected.begin(), expected.end(), run[0]);
        ASSERT_NE (start, expected.end());
        EXPECT_EQ ((start - expected.begin()) % 30, 0);
        EXPECT_TRUE (std::equal (run.begin(), run.end(), start));
    }
}

TEST (ReverbTest, DecayTimeIsSecondsLongAndShorterInTheHighs)
{
    const double rate = 48000.0;
    UnseededRand::restart(); // the detunings of a fresh process, whatever ran before in this one
    ReverbRig rig (rate);
    const auto wet = wetOnly (rig, impulse ((size_t) (rate * 8.0)), rate);

    struct Band { double centre, low, high; };
    double previous = 1e9;
    // The lines' gains aim at 5 s (4.5 s above 1 kHz); the mixing matrix damps its all-ones direction
    // by a quarter on every pass, which takes the measured times down to between 3 and 4 s.
    for (const auto& band : { Band { 250.0, 2.7, 4.2 }, Band { 1000.0, 2.6, 4.0 }, Band { 4000.0, 1.8, 3.0 } })
    {
        const double left = rt60Seconds (bandPass (wet.left, band.centre, rate), rate);
        const double right = rt60Seconds (bandPass (wet.right, band.centre, rate), rate);
        for (const double t : { left, right })
            EXPECT_TRUE (t > band.low && t < band.high) << band.centre << " Hz: " << t << " s";
        EXPECT_LT (std::min (left, right), previous + 0.1);
        previous = std::min (left, right);
    }
}

TEST (ReverbTest, StaysBoundedAndSteadyUnderSixtySecondsOfFullLevelNoise)
{
    const double rate = 48000.0;
    const auto out = ReverbRig (rate).run (noise ((size_t) (rate * 60.0), 1.0f, 5), 1.0f);
    ASSERT_TRUE (out.finite());
    for (const auto* channel : { &out.left, &out.right })
        EXPECT_LT (std::abs ((*channel)[(size_t) listen::indexOfPeak (*channel)]), 4.0f);
    EXPECT_NEAR (listen::rms (out.left, (size_t) (rate * 59), (size_t) rate) / listen::rms (out.left, (size_t) (rate * 10), (size_t) rate), 1.0, 0.2)
        << "late against early level";
}

TEST (ReverbTest, LowTonesBarelyReachTheReverb)
{
    // Equal-level noise bands through the stage; the 120 Hz high-pass ahead of the networks keeps the
    // lowest band out of the tail.
    const double rate = 48000.0;
    const size_t length = (size_t) (rate * 4.0);
    const auto source = noise (length, 1.0f, 11);
    const auto wetLevel = [&] (double centre)
    {
        // Three band-passes in a row: steep enough skirts that the low band has nothing above 120 Hz.
        auto band = bandPass (bandPass (bandPass (source.left, centre, rate), centre, rate), centre, rate);
        const double gain = 0.1 / listen::rms (band, 0, length);
        for (auto& v : band)
            v = (float) (v * gain);
        UnseededRand::restart();
        ReverbRig rig (rate);
        const auto wet = wetOnly (rig, { band, band }, rate);
        return listen::rms (wet.left, length / 4, length * 3 / 4) + listen::rms (wet.right, length / 4, length * 3 / 4);
    };
    EXPECT_LT (20.0 * std::log10 (wetLevel (30.0) / wetLevel (1000.0)), -10.0);
}
