// SPDX-License-Identifier: AGPL-3.0-or-later
// Room-mode feedback delay network: line tuning from the room's modes and the per-sample tick.
#include "effects/FdnReverb.h"

#include <algorithm>
#include <cmath>

#include "effects/FdnKernel.h"

namespace
{
// Mode numbers (nx, ny, nz) of the fifteen lines.
constexpr int roomModes[FdnReverb::numLines][3] = {
    { 1, 0, 0 }, { 0, 2, 1 }, { 1, 0, 1 }, { 2, 1, 0 }, { 0, 1, 1 }, { 1, 1, 1 }, { 1, 1, 0 }, { 0, 1, 2 },
    { 1, 2, 1 }, { 1, 2, 0 }, { 0, 0, 1 }, { 2, 1, 1 }, { 0, 1, 0 }, { 1, 0, 2 }, { 2, 0, 1 },
};

constexpr double speedOfSoundHalf = 170.145; // metres per second, halved: f = c/2 * |n / L|
constexpr double absorptionCrossoverRadians = 6283.185307179586; // 2 pi 1000 Hz

// Chooses the widest instruction set the processor has, once.
auto& tickDispatch()
{
    static auto dispatch = xsimd::dispatch<xsimd::arch_list<xsimd::avx2, xsimd::sse2>> (FdnKernel {});
    return dispatch;
}
} // namespace

double FdnReverb::sampleRate = 44100.0;
double FdnReverb::inverseSampleRate = 1.0 / 44100.0;

void FdnReverb::setSampleRate (float newSampleRate)
{
    sampleRate = newSampleRate;
    inverseSampleRate = 1.0 / (double) newSampleRate;
}

FdnReverb::FdnReverb (long lineCapacity, const int* draws)
    : capacity (std::max (lineCapacity, 1L))
{
    std::fill (std::begin (state.absorptionB), std::end (state.absorptionB), 1.0);
    tickDispatch(); // the processor's instruction sets are looked up here, not on the audio thread

    for (size_t i = 0; i < detune.size(); ++i)
        detune[i] = 2.0 * (draws[i] * 4.656612873077393e-10) - 1.0;
}

void FdnReverb::setRoom (double lengthX, double lengthY, double lengthZ) noexcept
{
    lx = lengthX;
    ly = lengthY;
    lz = lengthZ;
}

void FdnReverb::setDecay (double newRt60Low, double newRt60High) noexcept
{
    rt60Low = newRt60Low;
    rt60High = newRt60High;
}

void FdnReverb::updateLines()
{
    const double T = inverseSampleRate;
    const double sr = sampleRate;

    for (size_t i = 0; i < (size_t) numLines; ++i)
    {
        const double mx = roomModes[i][0] / lx;
        const double my = roomModes[i][1] / ly;
        const double mz = roomModes[i][2] / lz;
        const double f = speedOfSoundHalf * std::sqrt (mx * mx + my * my + mz * mz);

        const double d = sr * (1.0 + spread * detune[i]) / f;

        // The integer part sits 0.618 below the delay so that the all-pass always sees a fraction in
        // [0.618, 1.618], where its phase delay is flattest. A NaN lands on the lower limit.
        double dc = d;
        if (! (dc >= 0.618))
            dc = 0.618;
        if (dc > (double) capacity)
            dc = (double) capacity;
        state.delayInt[i] = (long) (dc - 0.618);
        const double frac = dc - (double) state.delayInt[i];
        state.allpassCoefficient[i] = (1.0 - frac) / (1.0 + frac);

        const double g = std::max (std::pow (10.0, -3.0 * d * T / rt60Low), 0.0);
        state.lineGain[i] = g;

        // Gain at high frequencies relative to g, turned into a one-pole shelf crossing over at 1 kHz.
        const double r = std::max (std::pow (10.0, -3.0 * d * T / std::min (rt60High, rt60Low)) / g, 0.0);
        const double A = r * r - 1.0;
        const double c = std::cos (T * absorptionCrossoverRadians);
        const double B = r * r * c - 1.0;
        double a = ((1.0 - r * r * c) - std::sqrt (A * (1.0 - r * r) + B * B)) / A;
        a = std::min (a, 0.0);
        a = std::max (a, -1.0);
        a = std::min (a, 1.0);
        state.absorptionA[i] = a;
        state.absorptionB[i] = 1.0 - std::abs (a);
    }

    // A tap reads the sample written delayInt ticks before, so a line needs only that many plus one.
    // Reads and writes wrap at the line's own length, so they meet the same samples as in a longer line.
    bool sameLengths = ! buffers.empty();
    for (int i = 0; i < numLines; ++i)
        sameLengths = sameLengths && state.lineLength[i] == state.delayInt[i] + 1;
    if (! sameLengths)
    {
        std::int64_t start = 0;
        for (int i = 0; i < FdnKernel::width; ++i)
        {
            const std::int64_t length = i < numLines ? state.delayInt[i] + 1 : FdnKernel::width;
            state.lineStart[i] = start;
            state.lineLength[i] = length;
            state.lineLast[i] = start + length - 1;
            state.writeAt[i] = start;
            state.readAt[0][i] = start;
            state.readAt[1][i] = start;
            start += length;
        }
        buffers.assign ((size_t) start, 0.0);
        state.lines = buffers.data();
        state.ringLength = *std::max_element (state.delayInt, state.delayInt + numLines) + 1;
        state.tapsShareReads = true;
    }
    restingChoices = 0;
}

bool FdnReverb::tailBelow (double limit) const noexcept
{
    const auto below = [limit] (const double* values)
    {
        for (int i = 0; i < numLines; ++i)
            if (! (std::abs (values[i]) < limit))
                return false;
        return true;
    };
    for (int tap = 0; tap < 2; ++tap)
        if (! below (state.lastInput[tap]) || ! below (state.lastOutput[tap]))
            return false;
    return below (state.absorptionState) && below (state.run);
}

void FdnReverb::clearTail() noexcept
{
    std::fill (buffers.begin(), buffers.end(), 0.0);
    for (int tap = 0; tap < 2; ++tap)
    {
        std::fill (std::begin (state.lastInput[tap]), std::end (state.lastInput[tap]), 0.0);
        std::fill (std::begin (state.lastOutput[tap]), std::end (state.lastOutput[tap]), 0.0);
    }
    std::fill (std::begin (state.absorptionState), std::end (state.absorptionState), 0.0);
    std::fill (std::begin (state.run), std::end (state.run), 0.0);
    resting = true;
}

void FdnReverb::process (const double* input, double* output, int numSamples, bool inputSilent) noexcept
{
    if (! inputSilent)
    {
        resting = false;
        restingChoices = 0;
        state.quietTicks = 0;
        tickDispatch() (state, input, output, numSamples, false);
        return;
    }
    // Silence in: tick while the tail sounds; a tail that has sunk below -140 dBFS in every line and
    // every filter is cleared, so that the network rests instead of following it for minutes.
    int done = 0;
    while (! resting && done < numSamples)
    {
        const int run = (int) std::min<long> (numSamples - done, std::max (1L, state.ringLength - state.quietTicks));
        tickDispatch() (state, input + done, output + done, run, true);
        restingChoices = 0;
        done += run;
        if (state.quietTicks >= state.ringLength && tailBelow (FdnLines::restingLimit))
            clearTail();
    }
    skipSilence (numSamples - done);
    std::fill (output + done, output + numSamples, 0.0);
}

void FdnReverb::skipSilence (long numSamples) noexcept
{
    // A tap is chosen whenever a tick starts at fade position 0; only the last two choices survive.
    const long firstChoice = (16 - state.fadeCount) & 15;
    if (firstChoice < numSamples)
    {
        const long choices = 1 + (numSamples - 1 - firstChoice) / 16;
        if (restingChoices >= 2)
            state.activeTap ^= (int) (choices & 1);
        else
        {
            if (choices > 2)
                state.activeTap ^= (int) ((choices - 2) & 1);
            for (long c = 0; c < std::min (choices, 2L); ++c)
                FdnKernel::chooseTap (state);
            restingChoices = (int) std::min (choices + restingChoices, 2L);
        }
    }
    state.fadeCount = (int) ((state.fadeCount + numSamples) & 15);
}
