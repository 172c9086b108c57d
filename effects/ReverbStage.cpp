// SPDX-License-Identifier: AGPL-3.0-or-later
// The reverb stage of the block loop: preparation of its networks and the per-sample mix.
#include "effects/ReverbStage.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "effects/SilenceCheck.h"
#include "effects/UnseededRand.h"

namespace
{
constexpr double leftSpread = 0.9;
constexpr double rightSpread = 0.56;
constexpr float highPassHz = 120.0f;
constexpr double tinyState = 1.1754943508222875e-29;
} // namespace

void ReverbStage::prepare (double sampleRate)
{
    const float rate = (float) sampleRate;
    const long lineCapacity = (long) (rate * 5.0);

    // Both networks' detunings in one run of the shared sequence: the left takes the first fifteen.
    int draws[2 * FdnReverb::numLines];
    UnseededRand::draw (draws, std::size (draws));

    leftNetwork.reset();
    rightNetwork.reset();
    FdnReverb::setSampleRate (rate);
    leftNetwork = std::make_unique<FdnReverb> (lineCapacity, draws);
    FdnReverb::setSampleRate (rate);
    rightNetwork = std::make_unique<FdnReverb> (lineCapacity, draws + FdnReverb::numLines);

    preDelay.prepare ({ sampleRate, 1, 1 });
    // The line holds the 40 ms it reads and no more: a longer one gives the same samples, costs memory
    // and keeps the stage awake for as long as it takes to run empty.
    preDelay.setMaximumDelayInSamples ((int) (rate * 40.0 / 1000.0) + 1);
    // setDelay clamps to what the line can hold.
    preDelay.setDelay ((float) (rate * 40.0 / 1000.0));
    // Once this many zeros have gone in, the line holds nothing else.
    preDelayLength = (long) preDelay.getMaximumDelayInSamples() + 2;
    preDelayZeros = 0;
    networkIn.fill (0.0);

    double u = (double) (highPassHz / rate);
    u = std::min (u, 0.5);
    const double exponent = u < 1e-6 ? -6.283185307179586e-06 : u * -6.283185307179586;
    const double a = std::exp (exponent);
    highPassFeedback = a;
    highPassInput = 1.0 - a;

    setReverbShape (1.0f, 1.0f, 40.0f, 0.5f);
}

void ReverbStage::setReverbShape (float size, float decay, float preDelayField, float newMix)
{
    roomSize = size;
    roomDecay = decay;
    preDelayMs = preDelayField;
    mix = newMix;

    // A gentle curve from the size knob to the room's scale; 1 gives the full 14 x 32 x 19 m room.
    double s = std::min (1.0 - std::sqrt (1.0 - (size * 0.99 + 0.01)), 1.0);
    s = std::max (s, 0.0);
    const double rt60Low = std::max (decay * 5.0, 0.0);
    const double rt60High = std::max (decay * 4.5, 0.0);

    const auto shape = [&] (FdnReverb& network, double spread)
    {
        network.setRoom (std::max (14.0 * s, 0.0), std::max (32.0 * s, 0.0), std::max (19.0 * s, 0.0));
        network.setDecay (rt60Low, rt60High);
        network.setSpread (spread);
        network.updateLines();
    };
    if (leftNetwork != nullptr)
        shape (*leftNetwork, leftSpread);
    if (rightNetwork != nullptr)
        shape (*rightNetwork, rightSpread);
}

void ReverbStage::process (juce::AudioBuffer<float>& main, int numSamples, float reverb, DcBlocker& left,
                           DcBlocker& right) noexcept
{
    if (main.getNumChannels() < 2)
        return;
    numSamples = std::min (numSamples, main.getNumSamples());

    mix = reverb * 0.9f;

    auto* l = main.getWritePointer (0);
    auto* r = main.getWritePointer (1);

    if (! isPrepared())
    {
        // Before the first prepare the line has no storage; the stage passes the blocked signal
        // (the high-pass has zero coefficients then, so skipping it loses no state).
        for (int i = 0; i < numSamples; ++i)
        {
            l[i] = left.process (l[i]);
            r[i] = right.process (r[i]);
        }
        return;
    }

    const float dry = 1.0f - mix;
    for (int start = 0; start < numSamples; start += chunkSize)
    {
        const int n = std::min (chunkSize, numSamples - start);
        processChunk (l + start, r + start, n, dry, left, right);
    }
}

bool ReverbStage::isQuiet (const DcBlocker& left, const DcBlocker& right) const noexcept
{
    return left.isClear() && right.isClear() && highPassState == 0.0 && preDelayZeros >= preDelayLength
           && leftNetwork->isResting() && rightNetwork->isResting();
}

void ReverbStage::processChunk (float* l, float* r, int n, float dry, DcBlocker& left, DcBlocker& right) noexcept
{
    // Silence into a stage that holds nothing gives silence, and the stage need not run.
    if (isQuiet (left, right) && isSilent (l, n) && isSilent (r, n))
    {
        std::fill (l, l + n, 0.0f);
        std::fill (r, r + n, 0.0f);
        leftNetwork->process (networkIn.data(), networkLeft.data(), n, true);
        rightNetwork->process (networkIn.data(), networkRight.data(), n, true);
        return;
    }

    bool silentIn = true;
    for (int i = 0; i < n; ++i)
    {
        const float dL = left.process (l[i]);
        const float dR = right.process (r[i]);
        l[i] = dL;
        r[i] = dR;

        const double p = (double) preDelay.popSample (0);
        networkIn[(size_t) i] = p;
        silentIn = silentIn && p == 0.0;

        const double mono = (dL + dR) * 0.5;
        const double z = highPassState;
        double state = z * highPassFeedback + highPassInput * mono;
        if (state >= -tinyState && state <= tinyState)
            state = 0.0;
        highPassState = state;
        const float pushed = (float) (mono - z);
        preDelay.pushSample (0, pushed);
        preDelayZeros = pushed == 0.0f ? preDelayZeros + 1 : 0;
    }

    leftNetwork->process (networkIn.data(), networkLeft.data(), n, silentIn);
    rightNetwork->process (networkIn.data(), networkRight.data(), n, silentIn);
    for (int i = 0; i < n; ++i)
    {
        l[i] = dry * l[i] + mix * (float) networkLeft[(size_t) i];
        r[i] = dry * r[i] + mix * (float) networkRight[(size_t) i];
    }
}
