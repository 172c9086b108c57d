// SPDX-License-Identifier: AGPL-3.0-or-later
// The octaver's per-bin passes for SSE2, the baseline of every x86-64.
#include "effects/PhaseVocoderKernel.h"

template void PhaseVocoderKernel::operator()<xsimd::sse2> (xsimd::sse2, const Analysis&) const noexcept;
template void PhaseVocoderKernel::operator()<xsimd::sse2> (xsimd::sse2, const Synthesis&) const noexcept;
