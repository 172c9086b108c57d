// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver's float transform against a direct DFT in double, both directions, several sizes.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <random>
#include <vector>

#include "effects/FloatFft.h"

namespace
{
std::vector<std::complex<double>> directDft (const std::vector<float>& interleaved, long n, int sign)
{
    std::vector<std::complex<double>> result ((size_t) n);
    for (long k = 0; k < n; ++k)
    {
        std::complex<double> sum = 0.0;
        for (long t = 0; t < n; ++t)
        {
            const double angle = sign * 2.0 * M_PI * (double) ((k * t) % n) / (double) n;
            sum += std::complex<double> (interleaved[(size_t) (2 * t)], interleaved[(size_t) (2 * t + 1)])
                   * std::polar (1.0, angle);
        }
        result[(size_t) k] = sum;
    }
    return result;
}
} // namespace

TEST (FftTest, ForwardAndInverseMatchADirectDftOnRandomInput)
{
    std::mt19937 random (1234);
    std::uniform_real_distribution<float> uniform (-1.0f, 1.0f);

    for (const long n : { 2L, 4L, 8L, 64L, 512L, 2048L })
    {
        for (const int sign : { -1, 1 })
        {
            std::vector<float> data ((size_t) (2 * n));
            for (auto& x : data)
                x = uniform (random);

            const auto expected = directDft (data, n, sign);
            FloatFft::perform (data.data(), n, sign);

            // Float rounding grows about with log2 n; the bins' size grows with sqrt n.
            const double tolerance = 2e-6 * std::sqrt ((double) n) * std::log2 ((double) n + 1.0) * 4.0;
            double worst = 0.0;
            for (long k = 0; k < n; ++k)
            {
                const std::complex<double> got (data[(size_t) (2 * k)], data[(size_t) (2 * k + 1)]);
                worst = std::max (worst, std::abs (got - expected[(size_t) k]));
            }
            EXPECT_LT (worst, tolerance) << "n " << n << " sign " << sign;
        }
    }
}

TEST (FftTest, TabledTransformIsBitIdenticalToTheStepByStepOne)
{
    // The tables hold the rotated twiddles and the bit-reversal swaps; the result must not move by a bit.
    std::mt19937 random (5);
    std::normal_distribution<float> normal (0.0f, 1.0f);
    for (const long n : { 2L, 4L, 8L, 16L, 256L, 2048L, 8192L })
    {
        const FloatFft tabled (n);
        for (const long sign : { -1L, 1L })
        {
            for (int trial = 0; trial < 3; ++trial)
            {
                std::vector<float> data ((size_t) (2 * n));
                for (auto& x : data)
                    x = trial == 2 ? std::ldexp (normal (random), (int) (random() % 60) - 30) : normal (random);
                auto expected = data;
                FloatFft::perform (expected.data(), n, sign);
                tabled.transform (data.data(), sign);
                ASSERT_EQ (0, std::memcmp (data.data(), expected.data(), data.size() * sizeof (float)))
                    << "n " << n << " sign " << sign << " trial " << trial;
            }
        }
    }
}
