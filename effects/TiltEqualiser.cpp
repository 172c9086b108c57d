// SPDX-License-Identifier: AGPL-3.0-or-later
// Block-rate corner computation of the tilt equaliser.
#include "effects/TiltEqualiser.h"

#include <cmath>

void TiltEqualiser::setupBlock (float tilt, double sampleRate)
{
    if (! (std::abs (lastTilt - tilt) > 0.001))
        return;

    lastTilt = tilt;
    const double samplePeriod = 1.0 / sampleRate;
    double highCornerHz = 10000.0;
    double lowCornerHz = 20.0;
    if (tilt < 0.0f)
        highCornerHz = (double) tilt * 9600.0 + 10000.0;
    else
        lowCornerHz = (double) tilt * 400.0 + 20.0;

    for (auto& filter : first)
        filter.setCorner (highCornerHz, samplePeriod);
    for (auto& filter : second)
        filter.setCorner (lowCornerHz, samplePeriod);
}
