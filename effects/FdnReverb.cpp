// SPDX-License-Identifier: AGPL-3.0-or-later
// Room-mode feedback delay network: line tuning from the room's modes and the per-sample tick.
#include "effects/FdnReverb.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{
// Mode numbers (nx, ny, nz) of the fifteen lines.
constexpr int roomModes[FdnReverb::numLines][3] = {
    { 1, 0, 0 }, { 0, 2, 1 }, { 1, 0, 1 }, { 2, 1, 0 }, { 0, 1, 1 }, { 1, 1, 1 }, { 1, 1, 0 }, { 0, 1, 2 },
    { 1, 2, 1 }, { 1, 2, 0 }, { 0, 0, 1 }, { 2, 1, 1 }, { 0, 1, 0 }, { 1, 0, 2 }, { 2, 0, 1 },
};

// Signs of one row of the circulant feedback matrix.
constexpr bool rowSignNegative[FdnReverb::numLines] = { true,  false, false, false, true,  false, false, true,
                                                        true,  false, true,  false, true,  true,  true };

constexpr double speedOfSoundHalf = 170.145; // metres per second, halved: f = c/2 * |n / L|
constexpr double absorptionCrossoverRadians = 6283.185307179586; // 2 pi 1000 Hz
} // namespace

double FdnReverb::sampleRate = 44100.0;
double FdnReverb::inverseSampleRate = 1.0 / 44100.0;

void FdnReverb::setSampleRate (float newSampleRate)
{
    sampleRate = newSampleRate;
    inverseSampleRate = 1.0 / (double) newSampleRate;
}

FdnReverb::FdnReverb (long lineCapacity)
{
    lines.reserve ((size_t) numLines);
    for (int i = 0; i < numLines; ++i)
        lines.emplace_back (lineCapacity);

    // Unseeded on purpose: a fresh process draws the same detunings, so renders repeat exactly.
    for (auto& value : detune)
        value = 2.0 * (std::rand() * 4.656612873077393e-10) - 1.0;
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
        lines[i].setDelay (d);

        const double g = std::max (std::pow (10.0, -3.0 * d * T / rt60Low), 0.0);
        lineGain[i] = g;

        // Gain at high frequencies relative to g, turned into a one-pole shelf crossing over at 1 kHz.
        const double r = std::max (std::pow (10.0, -3.0 * d * T / std::min (rt60High, rt60Low)) / g, 0.0);
        const double A = r * r - 1.0;
        const double c = std::cos (T * absorptionCrossoverRadians);
        const double B = r * r * c - 1.0;
        double a = ((1.0 - r * r * c) - std::sqrt (A * (1.0 - r * r) + B * B)) / A;
        a = std::min (a, 0.0);
        a = std::max (a, -1.0);
        a = std::min (a, 1.0);
        absorption[i].a = a;
        absorption[i].b = 1.0 - std::abs (a);
    }
}

double FdnReverb::tick (double input) noexcept
{
    // Every row reads only the previous tick's outputs, so all fifteen line inputs can be formed
    // first; each keeps its own order of additions.
    alignas (16) std::array<double, paddedLines> rowSum {};
    for (size_t m = 0; m < (size_t) numLines; ++m)
    {
        const double* run = lineOutRun.data() + m;
        if (rowSignNegative[m])
            for (size_t i = 0; i < paddedLines; ++i)
                rowSum[i] -= run[i];
        else
            for (size_t i = 0; i < paddedLines; ++i)
                rowSum[i] += run[i];
    }

    double sum = 0.0;
    for (size_t i = 0; i < (size_t) numLines; ++i)
    {
        const double in = 0.25 * rowSum[i] + input;
        const double out = absorption[i].process (lines[i].process (in));
        const double y = out * lineGain[i];
        lineOutRun[i] = y;
        sum += y;
    }

    for (size_t i = 0; i < (size_t) numLines - 1; ++i)
        lineOutRun[(size_t) numLines + i] = lineOutRun[i];

    return sum / 15.0;
}
