// SPDX-License-Identifier: AGPL-3.0-or-later
// In-place complex radix-2 transform in single precision, used by the octaver. The octaver's sound
// depends on this exact float arithmetic, which is why it is not a library FFT.
#pragma once

class FloatFft
{
public:
    // workspace holds frameSize interleaved (re, im) pairs; frameSize is a power of two.
    // sign -1 is the forward transform, +1 the inverse; neither scales.
    static void perform (float* workspace, long frameSize, long sign) noexcept;
};
