// SPDX-License-Identifier: AGPL-3.0-or-later
#include "effects/TiltEqualiser.h"

void TiltEqualiser::setupBlock (float, double) {}
