// SPDX-License-Identifier: AGPL-3.0-or-later
// The transform's later stages for AVX2: this file alone is built for AVX2 (without FMA), and runs
// only where the processor has it.
#include "effects/FftStages.h"

template void FftStages::operator()<xsimd::avx2> (xsimd::avx2, float*, long, long, long, long, const float*, const float*) const noexcept;
