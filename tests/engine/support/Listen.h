// SPDX-License-Identifier: AGPL-3.0-or-later
// What the DSP tests listen with: level, pitch and purity of rendered audio, and test signals.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include <juce_core/juce_core.h>

namespace listen
{
// A window past the end of the render is a mistake in the test, not a measurement.
inline void checkWindow (const std::vector<float>& x, size_t start, size_t length)
{
    if (start + length > x.size())
        throw std::out_of_range ("window past the end of the rendered audio");
}

inline double energy (const std::vector<float>& x, size_t from = 0, size_t to = SIZE_MAX)
{
    double sum = 0.0;
    for (size_t i = from; i < std::min (to, x.size()); ++i)
        sum += (double) x[i] * x[i];
    return sum;
}

inline double rms (const std::vector<float>& x, size_t start, size_t length)
{
    checkWindow (x, start, length);
    return std::sqrt (energy (x, start, start + length) / (double) length);
}

// Frequency from the upward zero crossings, interpolated between samples.
inline double frequency (const std::vector<float>& x, size_t start, size_t length, double sampleRate)
{
    checkWindow (x, start, length);
    double first = -1.0, last = -1.0;
    int crossings = 0;
    for (size_t i = start + 1; i < start + length; ++i)
        if (x[i - 1] < 0.0f && x[i] >= 0.0f)
        {
            last = (double) (i - 1) + (double) x[i - 1] / ((double) x[i - 1] - (double) x[i]);
            first = first < 0.0 ? last : first;
            ++crossings;
        }
    return crossings > 1 ? (crossings - 1) * sampleRate / (last - first) : 0.0;
}

// Share of the energy that a sinusoid at `hz` (plus a constant) cannot explain: 0 for a pure tone.
inline double impurity (const std::vector<float>& x, size_t start, size_t length, double hz, double sampleRate)
{
    checkWindow (x, start, length);
    double ss = 0, sc = 0, s1 = 0, cc = 0, c1 = 0, n = 0, xs = 0, xc = 0, x1 = 0, total = 0;
    for (size_t i = start; i < start + length; ++i)
    {
        const double w = 2.0 * juce::MathConstants<double>::pi * hz * (double) i / sampleRate;
        const double s = std::sin (w), c = std::cos (w), v = x[i];
        ss += s * s; sc += s * c; s1 += s; cc += c * c; c1 += c; n += 1.0;
        xs += v * s; xc += v * c; x1 += v; total += v * v;
    }
    // Solve the 3x3 normal equations by Cramer's rule.
    const double det = ss * (cc * n - c1 * c1) - sc * (sc * n - c1 * s1) + s1 * (sc * c1 - cc * s1);
    const double a = (xs * (cc * n - c1 * c1) - sc * (xc * n - c1 * x1) + s1 * (xc * c1 - cc * x1)) / det;
    const double b = (ss * (xc * n - c1 * x1) - xs * (sc * n - c1 * s1) + s1 * (sc * x1 - xc * s1)) / det;
    const double k = (ss * (cc * x1 - xc * c1) - sc * (sc * x1 - xc * s1) + xs * (sc * c1 - cc * s1)) / det;
    // What the fit leaves: the total minus the fitted part, for least squares.
    return total > 0.0 ? (total - (a * xs + b * xc + k * x1)) / total : 0.0;
}

inline int indexOfPeak (const std::vector<float>& x)
{
    return (int) (std::max_element (x.begin(), x.end(), [] (float a, float b) { return std::abs (a) < std::abs (b); }) - x.begin());
}

inline bool allFinite (const std::vector<float>& x)
{
    return std::all_of (x.begin(), x.end(), [] (float v) { return std::isfinite (v); });
}

// Uniform noise between -level and level.
inline std::vector<float> whiteNoise (size_t length, float level, int seed)
{
    juce::Random random (seed);
    std::vector<float> x (length);
    for (auto& v : x)
        v = level * (random.nextFloat() * 2.0f - 1.0f);
    return x;
}
} // namespace listen
