// SPDX-License-Identifier: AGPL-3.0-or-later
// One delay line of the room reverb: a double-precision ring with two all-pass fractional taps that
// take turns, so a new read position can be faded in without a click.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

class FdnLine
{
public:
    explicit FdnLine (long length);

    // Sets the line's delay in samples; the fractional part goes into a first-order all-pass.
    void setDelay (double delaySamples);

    long getCapacity() const noexcept { return capacity; }
    long getDelayInt() const noexcept { return delayInt; }
    double getAllpassCoefficient() const noexcept { return allpassCoefficient; }

    // Writes one sample and returns the cross-faded output of the two taps.
    double process (double in) noexcept
    {
        buffer[(std::size_t) writeIndex] = in;

        if (fadeCount == 0)
        {
            activeTap ^= 1;
            readIndex[activeTap] = (capacity + writeIndex - delayInt) % capacity;
            double c = allpassCoefficient;
            if (c < -0.9999999) c = -0.9999999;
            if (c > 0.9999999) c = 0.9999999;
            allpass[(std::size_t) activeTap].coefficient = c;
        }

        double y[2];
        for (int tap = 0; tap < 2; ++tap)
        {
            auto& ap = allpass[(std::size_t) tap];
            const double x = buffer[(std::size_t) readIndex[tap]];
            const double out = ap.coefficient * x + ap.lastInput - ap.coefficient * ap.lastOutput;
            ap.lastInput = x;
            ap.lastOutput = out;
            y[tap] = out;
        }

        const double f = fadeTable[(std::size_t) fadeCount];
        const double result = y[activeTap ^ 1] * (1.0 - f) + y[activeTap] * f;

        // Indexes stay in [0, capacity), so a wrap test gives what the modulo would, without a division.
        writeIndex = wrapNext (writeIndex);
        readIndex[0] = wrapNext (readIndex[0]);
        readIndex[1] = wrapNext (readIndex[1]);
        fadeCount = (fadeCount + 1) & 15;
        return result;
    }

private:
    long wrapNext (long index) const noexcept
    {
        ++index;
        return index >= capacity ? 0 : index;
    }

    struct Allpass
    {
        double coefficient = 0.0;
        double lastInput = 0.0;
        double lastOutput = 0.0;
    };

    static constexpr std::array<double, 16> fadeTable { 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.1, 0.2,
                                                        0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0 };

    std::array<Allpass, 2> allpass {};
    long capacity = 1;
    std::vector<double> buffer;
    double allpassCoefficient = 0.0;
    long delayInt = 0;
    long writeIndex = 0;
    long readIndex[2] { 0, 0 };
    int fadeCount = 0;
    int activeTap = 0;
};
