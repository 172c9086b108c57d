// SPDX-License-Identifier: AGPL-3.0-or-later
// The reverb stage driven directly with its DC blockers: dry path, pre-delay, decay, high-pass,
// long-run level and repeatability.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "effects/ReverbStage.h"

namespace
{
struct Stereo
{
    std::vector<float> left, right;
};

struct ReverbRig
{
    // A rate of 0 leaves the stage and its DC blockers unprepared.
    explicit ReverbRig (double sampleRate) { prepare (sampleRate); }

    void prepare (double sampleRate)
    {
        if (sampleRate <= 0.0)
            return;
        stage->prepare (sampleRate);
        dcLeft.prepare (sampleRate);
        dcRight.prepare (sampleRate);
    }

    Stereo run (const Stereo& input, float reverb, int blockSize = 256)
    {
        juce::ScopedNoDenormals noDenormals;
        juce::AudioBuffer<float> buffer (2, blockSize);
        Stereo out = input;
        for (size_t start = 0; start < input.left.size(); start += (size_t) blockSize)
        {
            const int n = (int) std::min ((size_t) blockSize, input.left.size() - start);
            buffer.copyFrom (0, 0, input.left.data() + start, n);
            buffer.copyFrom (1, 0, input.right.data() + start, n);
            stage->process (buffer, n, reverb, dcLeft, dcRight);
            std::copy (buffer.getReadPointer (0), buffer.getReadPointer (0) + n, out.left.begin() + (long) start);
            std::copy (buffer.getReadPointer (1), buffer.getReadPointer (1) + n, out.right.begin() + (long) start);
        }
        return out;
    }

    std::unique_ptr<ReverbStage> stage = std::make_unique<ReverbStage>();
    DcBlocker dcLeft, dcRight;
};

// What the stage passes when its mix is 0: the input through a fresh pair of DC blockers.
Stereo dcBlocked (const Stereo& input, double rate)
{
    juce::ScopedNoDenormals noDenormals;
    DcBlocker l, r;
    if (rate > 0.0)
    {
        l.prepare (rate);
        r.prepare (rate);
    }
    Stereo out = input;
    for (size_t i = 0; i < out.left.size(); ++i)
    {
        out.left[i] = l.process (out.left[i]);
        out.right[i] = r.process (out.right[i]);
    }
    return out;
}

// The reverb's own contribution at full `reverb`: output minus the 10% of blocked dry signal.
Stereo wetOnly (const Stereo& out, const Stereo& input, double rate)
{
    const auto dry = dcBlocked (input, rate);
    Stereo wet = out;
    for (size_t i = 0; i < wet.left.size(); ++i)
    {
        wet.left[i] -= (1.0f - 0.9f) * dry.left[i];
        wet.right[i] -= (1.0f - 0.9f) * dry.right[i];
    }
    return wet;
}

Stereo impulse (size_t length)
{
    Stereo x { std::vector<float> (length, 0.0f), std::vector<float> (length, 0.0f) };
    x.left[0] = x.right[0] = 1.0f;
    return x;
}

Stereo noise (size_t length, float level, unsigned seed)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<float> uniform (-level, level);
    Stereo x { std::vector<float> (length), std::vector<float> (length) };
    for (size_t i = 0; i < length; ++i)
    {
        x.left[i] = uniform (random);
        x.right[i] = uniform (random);
    }
    return x;
}

bool allFinite (const Stereo& x)
{
    for (const auto* channel : { &x.left, &x.right })
        for (const float v : *channel)
            if (! std::isfinite (v))
                return false;
    return true;
}

double rms (const std::vector<float>& x, size_t from, size_t to)
{
    double sum = 0.0;
    for (size_t i = from; i < to; ++i)
        sum += (double) x[i] * x[i];
    return std::sqrt (sum / (double) (to - from));
}

std::vector<double> bandPass (const std::vector<float>& x, double centre, double rate)
{
    // Second-order band-pass, 0 dB at the centre, about an octave wide.
    const double w0 = 2.0 * M_PI * centre / rate;
    const double alpha = std::sin (w0) / (2.0 * std::sqrt (2.0));
    const double a0 = 1.0 + alpha;
    const double b0 = alpha / a0, b2 = -alpha / a0, a1 = -2.0 * std::cos (w0) / a0, a2 = (1.0 - alpha) / a0;
    std::vector<double> y (x.size());
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (size_t i = 0; i < x.size(); ++i)
    {
        const double out = b0 * x[i] + b2 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = x[i];
        y2 = y1;
        y1 = out;
        y[i] = out;
    }
    return y;
}

// Decay time from the backward-integrated energy, extrapolated from its fall between -5 and -25 dB.
double rt60Seconds (const std::vector<double>& x, double rate)
{
    std::vector<double> energy (x.size());
    double sum = 0.0;
    for (size_t i = x.size(); i-- > 0;)
    {
        sum += x[i] * x[i];
        energy[i] = sum;
    }
    size_t at5 = 0, at25 = 0;
    for (size_t i = 0; i < x.size(); ++i)
    {
        const double db = 10.0 * std::log10 (energy[i] / energy[0]);
        if (at5 == 0 && db <= -5.0)
            at5 = i;
        if (db <= -25.0)
        {
            at25 = i;
            break;
        }
    }
    return 3.0 * (double) (at25 - at5) / rate;
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
        const auto expected = dcBlocked (input, c.rate);
        const auto from = (long) c.fullMixFirst;
        rig.run ({ { input.left.begin(), input.left.begin() + from }, { input.right.begin(), input.right.begin() + from } }, 1.0f);
        const auto out = rig.run ({ { input.left.begin() + from, input.left.end() }, { input.right.begin() + from, input.right.end() } }, c.reverb);
        EXPECT_TRUE (std::equal (out.left.begin(), out.left.end(), expected.left.begin() + from)) << c.name;
        EXPECT_TRUE (std::equal (out.right.begin(), out.right.end(), expected.right.begin() + from)) << c.name;
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
        const auto input = impulse (length);
        const auto wet = wetOnly (rig.run (input, 1.0f), input, rate);
        const auto preDelay = (size_t) ((float) rate * 40.0 / 1000.0);

        size_t first = length;
        for (size_t i = 0; i < length && first == length; ++i)
            if (std::abs (wet.left[i]) > 0.0f || std::abs (wet.right[i]) > 0.0f)
                first = i;
        EXPECT_GT (first, preDelay);
        EXPECT_LT (first, preDelay + (size_t) (rate * 0.2));
        EXPECT_TRUE (allFinite (wet));
        EXPECT_GT (rms (wet.left, length / 2, length), 2e-5);
        EXPECT_NE (wet.left, wet.right);
    }
}

TEST (ReverbTest, DecayTimeIsSecondsLongAndShorterInTheHighs)
{
    const double rate = 48000.0;
    std::srand (1); // the detunings of a fresh process, whatever ran before in this one
    ReverbRig rig (rate);
    const auto input = impulse ((size_t) (rate * 8.0));
    const auto wet = wetOnly (rig.run (input, 1.0f), input, rate);

    struct Band { double centre, low, high; };
    double previous = 1e9;
    // The lines' gains aim at 5 s (4.5 s above 1 kHz); the mixing matrix damps its all-ones direction
    // by a quarter on every pass, which takes the measured times down to between 3 and 4 s.
    for (const auto& band : { Band { 250.0, 2.7, 4.2 }, Band { 1000.0, 2.6, 4.0 }, Band { 4000.0, 1.8, 3.0 } })
    {
        const double left = rt60Seconds (bandPass (wet.left, band.centre, rate), rate);
        const double right = rt60Seconds (bandPass (wet.right, band.centre, rate), rate);
        std::printf ("[ reverb ] RT60 at %.0f Hz: left %.2f s, right %.2f s\n", band.centre, left, right);
        for (const double t : { left, right })
        {
            EXPECT_GT (t, band.low) << band.centre;
            EXPECT_LT (t, band.high) << band.centre;
        }
        EXPECT_LT (std::min (left, right), previous + 0.1);
        previous = std::min (left, right);
    }
}

TEST (ReverbTest, StaysBoundedAndSteadyUnderSixtySecondsOfFullLevelNoise)
{
    const double rate = 48000.0;
    ReverbRig rig (rate);
    const auto out = rig.run (noise ((size_t) (rate * 60.0), 1.0f, 5), 1.0f);
    ASSERT_TRUE (allFinite (out));

    float peak = 0.0f;
    for (size_t i = 0; i < out.left.size(); ++i)
        peak = std::max ({ peak, std::abs (out.left[i]), std::abs (out.right[i]) });
    const double early = rms (out.left, (size_t) (rate * 10), (size_t) (rate * 11));
    const double late = rms (out.left, (size_t) (rate * 59), (size_t) (rate * 60));
    std::printf ("[ reverb ] 60 s full-scale noise: peak %.3f, rms at 10 s %.4f, at 59 s %.4f\n", (double) peak, early, late);
    EXPECT_LT (peak, 4.0f);
    EXPECT_NEAR (late / early, 1.0, 0.2);
}

TEST (ReverbTest, LowTonesBarelyReachTheReverb)
{
    // Equal-level noise bands through the stage; the 120 Hz high-pass ahead of the networks keeps the
    // lowest band out of the tail.
    const double rate = 48000.0;
    const size_t length = (size_t) (rate * 4.0);
    const auto source = noise (length, 1.0f, 11);

    double wetLevel[2] {};
    const double centres[2] { 30.0, 1000.0 };
    for (int b = 0; b < 2; ++b)
    {
        // Three band-passes in a row: steep enough skirts that the low band has nothing above 120 Hz.
        std::vector<float> shaped = source.left;
        std::vector<double> band;
        for (int pass = 0; pass < 3; ++pass)
        {
            band = bandPass (shaped, centres[b], rate);
            std::transform (band.begin(), band.end(), shaped.begin(), [] (double v) { return (float) v; });
        }
        const double level = rms (shaped, 0, length);
        Stereo input { std::vector<float> (length), std::vector<float> (length) };
        for (size_t i = 0; i < length; ++i)
            input.left[i] = input.right[i] = (float) (0.1 * band[i] / level);

        std::srand (1);
        ReverbRig rig (rate);
        const auto wet = wetOnly (rig.run (input, 1.0f), input, rate);
        wetLevel[b] = rms (wet.left, length / 4, length) + rms (wet.right, length / 4, length);
    }
    const double ratioDb = 20.0 * std::log10 (wetLevel[0] / wetLevel[1]);
    std::printf ("[ reverb ] wet level of the 30 Hz band against the 1 kHz band: %.1f dB\n", ratioDb);
    EXPECT_LT (ratioDb, -10.0);
}

TEST (ReverbTest, FreshGeneratorStateRepeatsTheTailAndEachPrepareDrawsAnew)
{
    const double rate = 44100.0;
    const auto input = impulse ((size_t) rate);

    std::srand (1); // the state of a process that never seeded
    ReverbRig first (rate);
    const auto a = first.run (input, 1.0f);

    std::srand (1);
    ReverbRig second (rate);
    const auto b = second.run (input, 1.0f);
    EXPECT_EQ (a.left, b.left);
    EXPECT_EQ (a.right, b.right);

    // Preparing again without reseeding draws further detunings: another room.
    second.prepare (rate);
    EXPECT_NE (a.left, second.run (input, 1.0f).left);
}
