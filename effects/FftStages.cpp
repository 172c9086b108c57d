// SPDX-License-Identifier: AGPL-3.0-or-later
// The transform's later stages for SSE2, the baseline of every x86-64.
#include "effects/FftStages.h"

template void FftStages::operator()<xsimd::sse2> (xsimd::sse2, float*, long, long, long, long, const float*, const float*) const noexcept;
