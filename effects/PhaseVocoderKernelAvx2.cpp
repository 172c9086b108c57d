// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver's per-bin passes for AVX2: this file alone is built for AVX2 (without FMA), and runs
// only where the processor has it.
#include "effects/PhaseVocoderKernel.h"

template void PhaseVocoderKernel::operator()<xsimd::avx2> (xsimd::avx2, const Analysis&) const noexcept;
template void PhaseVocoderKernel::operator()<xsimd::avx2> (xsimd::avx2, const Synthesis&) const noexcept;
