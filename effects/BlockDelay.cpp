// SPDX-License-Identifier: AGPL-3.0-or-later
// The block delay's block-rate setup and its per-sample pass.
#include "effects/BlockDelay.h"

#include <algorithm>
#include <cmath>

#include "core/ParameterTable.h"
#include "effects/SilenceCheck.h"

namespace
{
constexpr double pi = juce::MathConstants<double>::pi;

// Float-to-int for the block length. Out-of-range, infinite and NaN values (absurd host tempi) are
// settled before the conversion, which would otherwise be undefined.
int blockLengthFrom (float length)
{
    if (! (length < (float) BlockDelay::maxBlockLength))
        return BlockDelay::maxBlockLength;
    if (length < 5.0f)
        return 4;
    return (int) length;
}

// Truncation towards zero, defined for every input.
int truncatedToInt (double value)
{
    return (value > -1.0e9 && value < 1.0e9) ? (int) value : 0;
}

float catmullRom (const float* plane, int i, double t) noexcept
{
    const double xm1 = plane[(i - 1) & BlockDelay::planeMask];
    const double x0 = plane[i & BlockDelay::planeMask];
    const double x1 = plane[(i + 1) & BlockDelay::planeMask];
    const double x2 = plane[(i + 2) & BlockDelay::planeMask];
    return (float) (x0 + t * ((x1 - xm1) / 2.0
                              + t * ((xm1 + 2.0 * x1 - (x2 + 5.0 * x0) / 2.0)
                                     + t * (((x0 - x1) * 3.0 - xm1 + x2) / 2.0))));
}
} // namespace

void BlockDelay::clearPlanes() noexcept
{
    cycleSound = false;
    planesClear = true;
    for (float* plane : { recordL, recordR, playL, playR })
        std::fill (plane, plane + writtenEnd, 0.0f);
    writtenEnd = 0;
}

void BlockDelay::reset (double sampleRate)
{
    clearPlanes();
    if (sampleRate > 0.0)
    {
        const float sr = (float) sampleRate;
        double u = 10.0 / sr;
        u = std::max (1e-6, std::min (u, 0.5));
        fmSmoothCoeff = (float) std::exp (u * (double) juce::MathConstants<float>::pi * -2.0);
        sampleRateF = sr;
    }
}

void BlockDelay::setupBlock (const Settings& s)
{
    const float sr = s.sampleRate;

    float length;
    if (! (s.sync > 0.5f))
    {
        length = (s.time / 1000.0f) * sr + 0.5f;
    }
    else
    {
        const float position = std::floor (((s.time - 160.0f) / 2820.0f) * 10.0f);
        char text[16];
        const double fraction = syncFractionFor (position, text);
        length = (float) (fraction * (240.0 / s.hostBpm) * sr) + 0.5f;
    }
    const int newLength = blockLengthFrom (length);

    if (newLength != lastBlockLen)
    {
        // A new length is a hard restart: the old material would not fit the new window.
        lastBlockLen = newLength;
        clearPlanes();
        writePos = 0;
        readPos = newLength;
    }
    blockLen = newLength;
    // Every write of this block lands at or below the block length.
    writtenEnd = std::max (writtenEnd, std::min (newLength + 1, (int) planeSize));

    reverse = s.rev >= 0.5f;
    feedback = (float) (s.fdbk * 0.9);

    const float rampSamples = (s.envms / 1000.0f) * sr;
    const int roundedRamp = truncatedToInt (rampSamples + 0.5);
    if (roundedRamp != rampLen)
    {
        rampLenF = rampSamples;
        rampStep = 1.0f / rampSamples;
        rampLen = roundedRamp;
    }

    fmAmount = s.fmit;
    squeeze = std::isfinite (s.squeezeit) ? (int) std::lround (juce::jlimit (-1.0e6f, 1.0e6f, s.squeezeit)) : 0;
    const double r = (double) sampleRateF / 44100.0;
    const double u = (double) s.fmit / 1400.0;
    fmDepth = u * r * 0.0001 + (1.0 - u) * r * 0.0005;
}

void BlockDelay::freezeBlock() noexcept
{
    const float length = (float) blockLen;
    for (int j = 0; j <= blockLen; ++j)
    {
        const float w = ((float) j / length) * 2.0f - 1.0f;
        const float window = 1.0f - w * w * w * w;
        const int k = j & planeMask;
        playL[k] = window * recordL[k];
        playR[k] = window * recordR[k];
    }
}

float BlockDelay::stepEnvelope() noexcept
{
    // Envelope: rises over the head of the block, holds, falls over the tail; where head and tail
    // overlap the two steps cancel and the value holds.
    if (writePos < rampLen)
        env += rampStep;
    const int tailStart = blockLen - rampLen;
    float e;
    if (tailStart < writePos)
        e = env - rampStep;
    else if (writePos < rampLen)
        e = env;
    else
        e = envMax;
    e = e < 0.0f ? 0.0f : (envMax < e ? envMax : e);
    env = e;
    return e;
}


void BlockDelay::processSample (float& left, float& right, bool delayOn, float revmix, TiltEqualiser& tilt) noexcept
{
    const float e = stepEnvelope();

    // One sample behind the write position: the feedback tap, and the forward read position.
    const int p = tapBehindWrite();
    if (! reverse)
        readPos = p;

    const int w = writePos & planeMask;
    const int tap = p & planeMask;
    const float recordedL = left - playL[tap] * feedback;
    const float recordedR = right - playR[tap] * feedback;
    recordL[w] = recordedL;
    recordR[w] = recordedR;
    cycleSound = cycleSound || recordedL != 0.0f || recordedR != 0.0f;

    ++writePos;
    if (writePos < blockLen)
    {
        if (reverse)
            --readPos;
    }
    else
    {
        freezeBlock();
        // A block that recorded only zeros leaves both planes zero.
        planesClear = ! cycleSound;
        cycleSound = false;
        writePos = 0;
        if (reverse)
            readPos = blockLen - 1;
    }

    float ring = 1.0f;
    if (squeeze != 0)
    {
        const int pos = squeeze > 0 ? readPos : writePos;
        // Turning reverse on mid-block lets readPos run below zero; the floor keeps the root real.
        const double ratio = std::max (0.0, (double) pos / (double) blockLen);
        const double s = std::sqrt (ratio);
        const double a = std::sin (pi * ((std::abs (squeeze) * 0.5 + 500.0) * (1.0 - s) + s * 500.0));
        double smoothed = (ringSmoothed + (1.0 - a * a)) * 0.5;
        if (smoothed >= -1.1754943508222875e-29 && smoothed <= 1.1754943508222875e-29)
            smoothed = 0.0;
        ringSmoothed = smoothed;
        ring = (float) (ringSmoothed * e);
    }

    float outL, outR;
    if (fmAmount <= 0.0f)
    {
        outL = playL[readPos & planeMask];
        outR = playR[readPos & planeMask];
    }
    else
    {
        const double position = (double) readPos;
        float f = fmAmount + (fmSmoothed - fmAmount) * fmSmoothCoeff;
        if (f >= -1e-8 && f <= 1e-8)
            f = 0.0f;
        fmSmoothed = f;
        const double m = std::sin ((position / blockLen) * pi * f);
        const double q = (fmDepth * m + 1.0) * position;
        const int i = truncatedToInt (q + 0.5);
        const double t = q - i;
        outL = catmullRom (playL, i, t);
        outR = catmullRom (playR, i, t);
    }

    if (delayOn)
    {
        const float v = revmix;
        left = (1.0f - v) * left + v * ring * e * outL * 1.1f;
        right = (1.0f - v) * right + v * ring * e * outR * 1.1f;
    }

    left = tilt.processSample (0, left);
    right = tilt.processSample (1, right);
}

void BlockDelay::process (juce::AudioBuffer<float>& wet, int numSamples, bool delayOn, float revmix, TiltEqualiser& tilt)
{
    const int channels = wet.getNumChannels();
    if (channels < 1)
        return;
    numSamples = juce::jlimit (0, wet.getNumSamples(), numSamples);

    auto* left = wet.getWritePointer (0);
    auto* right = channels > 1 ? wet.getWritePointer (1) : nullptr;
    if (canRest (left, right, numSamples, tilt))
    {
        rest (numSamples);
        std::fill (left, left + numSamples, 0.0f);
        if (right != nullptr)
            std::fill (right, right + numSamples, 0.0f);
        return;
    }
    for (int i = 0; i < numSamples; ++i)
    {
        float l = left[i];
        float r = right != nullptr ? right[i] : l;
        processSample (l, r, delayOn, revmix, tilt);
        left[i] = l;
        if (right != nullptr)
            right[i] = r;
    }
}

bool BlockDelay::canRest (const float* left, const float* right, int numSamples, const TiltEqualiser& tilt) const noexcept
{
    // Silence in, zero planes and settled modulators: every sample would come out zero, and only the
    // envelope and the positions move. The ring modulator's smoothing follows the position even in
    // silence, so a delay with squeeze on keeps running.
    const bool fmSettled = fmAmount <= 0.0f || fmSmoothed == fmAmount;
    return planesClear && ! cycleSound && squeeze == 0 && fmSettled && tilt.isClear()
           && isSilent (left, numSamples) && (right == nullptr || isSilent (right, numSamples));
}

void BlockDelay::rest (int numSamples) noexcept
{
    for (int i = 0; i < numSamples;)
    {
        // Between the two ramps the envelope holds and the positions only count, so a run that
        // neither reaches the tail ramp nor wraps is taken in one step.
        const int run = std::min ({ numSamples - i, blockLen - rampLen - writePos + 1, blockLen - 1 - writePos });
        if (writePos >= std::max (rampLen, 1) && run > 1)
        {
            stepEnvelope();
            if (reverse)
                readPos -= run;
            else
                readPos = writePos + run - 2;
            writePos += run;
            i += run;
            continue;
        }

        stepEnvelope();
        const int p = tapBehindWrite();
        if (! reverse)
            readPos = p;
        ++writePos;
        if (writePos < blockLen)
        {
            if (reverse)
                --readPos;
        }
        else
        {
            // The frozen copy of a silent block is silence, which the play planes already hold.
            writePos = 0;
            if (reverse)
                readPos = blockLen - 1;
        }
        ++i;
    }
}
