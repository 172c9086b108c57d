// SPDX-License-Identifier: AGPL-3.0-or-later
// Coefficients of the tilt equaliser's one-pole.
#include "effects/TiltOnePole.h"

#include <cmath>

void TiltOnePole::setCorner (double cornerHz, double samplePeriod)
{
    a = std::exp (cornerHz * samplePeriod * -6.283185307179586);
    b = 1.0 - a;
}
