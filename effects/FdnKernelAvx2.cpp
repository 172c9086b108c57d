// SPDX-License-Identifier: AGPL-3.0-or-later
// The network's tick for AVX2: this file alone is built for AVX2 (without FMA), and runs only where
// the processor has it.
#include "effects/FdnKernel.h"

template void FdnKernel::operator()<xsimd::avx2> (xsimd::avx2, State&, const double*, double*, int, bool) const noexcept;
