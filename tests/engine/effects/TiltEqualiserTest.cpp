// SPDX-License-Identifier: AGPL-3.0-or-later
// Tilt equaliser: its response over the range against a band-pass of two first-order corners.
#include <gtest/gtest.h>

#include "effects/TiltEqualiser.h"
#include "engine/support/Listen.h"

TEST (TiltEqualiser, ResponseFollowsItsCornersFromLowsToHighs)
{
    // Neutral passes 20 Hz to 10 kHz; -1 pulls the top corner down to 400 Hz, +1 lifts the bottom
    // one to 420 Hz. Near the top corner the sampled filters fall short of the analogue shape.
    struct Case { float tilt; double lowCornerHz, highCornerHz; };
    for (const auto& c : { Case { -1.0f, 20.0, 400.0 }, Case { 0.0f, 20.0, 10000.0 }, Case { 1.0f, 420.0, 10000.0 } })
    {
        for (const double hz : { 20.0, 100.0, 1000.0, 5000.0, 10000.0 })
        {
            TiltEqualiser tilt;
            tilt.setupBlock (c.tilt, 48000.0);
            std::vector<float> x (96000), y (x.size());
            for (size_t i = 0; i < x.size(); ++i)
            {
                x[i] = (float) std::sin (2.0 * M_PI * hz * (double) i / 48000.0);
                y[i] = tilt.processSample (1, x[i]);
            }
            const double measuredDb = 10.0 * std::log10 (listen::energy (y, 48000) / listen::energy (x, 48000));
            const double low = hz / c.lowCornerHz, high = hz / c.highCornerHz;
            const double modelDb = 10.0 * std::log10 (low * low / (1.0 + low * low) / (1.0 + high * high));
            EXPECT_NEAR (measuredDb, modelDb, hz >= 5000.0 ? 1.0 : 0.3) << "tilt " << c.tilt << " at " << hz << " Hz";
        }
    }
}
