// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver's float transform against a direct DFT in double, and its tabled form against the
// step-by-step one, bit for bit.
#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <random>

#include "effects/FloatFft.h"

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
