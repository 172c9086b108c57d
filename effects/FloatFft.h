// SPDX-License-Identifier: AGPL-3.0-or-later
// In-place complex radix-2 transform in single precision, used by the octaver. The octaver's sound
// depends on this exact float arithmetic, which is why it is not a library FFT.
#pragma once

#include <utility>
#include <vector>

class FloatFft
{
public:
    // Prepares the tables for one size (a power of two); allocates.
    explicit FloatFft (long frameSize);

    // workspace holds frameSize interleaved (re, im) pairs; sign -1 is the forward transform, +1 the
    // inverse; neither scales. Gives bit for bit what `perform` gives.
    void transform (float* workspace, long sign) const noexcept;

    long getSize() const noexcept { return size; }

    // The transform computed step by step, for any power-of-two size, twiddles rotated on the fly.
    static void perform (float* workspace, long frameSize, long sign) noexcept;

private:
    struct Twiddles
    {
        // Each complex twiddle twice, so that two butterflies load theirs as one vector.
        std::vector<float> real, imag;
    };
    static Twiddles makeTwiddles (long frameSize, long sign);

    long size = 0;
    long stages = 0;
    std::vector<std::pair<int, int>> swaps;
    Twiddles forward, inverse;
};
