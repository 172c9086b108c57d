// SPDX-License-Identifier: AGPL-3.0-or-later
// Octaver block loop and frame: analysis, bin shift, synthesis and overlap-add.
#include "effects/Octaver.h"

#include <algorithm>
#include <cmath>

#include "effects/PhaseVocoderKernel.h"
#include "effects/SilenceCheck.h"


namespace
{
constexpr double pi = 3.14159265358979323846;
constexpr long windowLength = 2048;
constexpr int unpreparedBlockSize = 512;

// The Hann window 0.5 - 0.5 cos(2 pi k / 2048) in double. Tabled once: the table holds exactly what
// the formula gives at each use (same expression, same libm), so frames cost no cosines.
struct HannTable
{
    HannTable()
    {
        for (long k = 0; k < windowLength; ++k)
            values[(size_t) k] = 0.5 - 0.5 * std::cos (2.0 * pi * (double) k / (double) windowLength);
    }
    std::array<double, windowLength> values {};
};

const HannTable& hannTable()
{
    static const HannTable table;
    return table;
}

// Chooses the widest instruction set the processor has, once.
auto& kernelDispatch()
{
    static auto dispatch = xsimd::dispatch<xsimd::arch_list<xsimd::avx2, xsimd::sse2>> (PhaseVocoderKernel {});
    return dispatch;
}
} // namespace

Octaver::Octaver()
{
    hannTable();
    kernelDispatch(); // the processor's instruction sets are looked up here, not on the audio thread
    mono.setSize (1, unpreparedBlockSize);
    output.setSize (1, unpreparedBlockSize);
    mono.clear();
    output.clear();
}

double Octaver::windowAt (long k) noexcept
{
    return hannTable().values[(size_t) k];
}

void Octaver::fft (float* workspace, long size, long sign) const noexcept
{
    if (size == transformer.getSize())
        transformer.transform (workspace, sign);
    else
        FloatFft::perform (workspace, size, sign);
}

void Octaver::prepare (double sampleRate, int samplesPerBlock)
{
    const int blockSize = std::max (1, samplesPerBlock);
    mono.setSize (1, blockSize, false, true, false);
    output.setSize (1, blockSize, false, true, false);

    frameSize = 2048;
    halfFrame = 1024;
    oversampling = 8;
    hop = 256;
    latency = 1792;
    binFrequency = (double) (float) sampleRate * (1.0 / 2048.0);
    expectedPhaseStep = pi / 4.0;

    inFifo.fill (0.0f);
    outFifo.fill (0.0f);
    fftWorkspace.fill (0.0f);
    lastPhase.fill (0.0f);
    sumPhase.fill (0.0f);
    outputAccumulator.fill (0.0f);
    anaFreq.fill (0.0f);
    anaMagn.fill (0.0f);
    phasePending.fill (false);
    binUseRatio = 0.0f;
    zeroRun = frameSize;
    silentFrames = restingFrames;
    silentStepRatio = 0.0f;
}

void Octaver::process (juce::AudioBuffer<float>& wet, int numSamples, float mix, float newRatio) noexcept
{
    if (wet.getNumChannels() < 2)
        return;
    ratio = newRatio;
    numSamples = std::min (numSamples, wet.getNumSamples());

    // A block longer than prepared runs in pieces; every step is per sample, so the result is the same.
    const int chunk = std::min (mono.getNumSamples(), output.getNumSamples());
    for (int start = 0; start < numSamples; start += chunk)
        processChunk (wet, start, std::min (chunk, numSamples - start), mix);
}

void Octaver::processChunk (juce::AudioBuffer<float>& wet, int start, int numSamples, float g) noexcept
{
    float* left = wet.getWritePointer (0, start);
    float* right = wet.getWritePointer (1, start);
    float* m = mono.getWritePointer (0);
    float* out = output.getWritePointer (0);

    // Silence into a vocoder that holds none: only the frame position and the synthesis phases move.
    if (silentFrames >= restingFrames && zeroRun >= frameSize && isSilent (left, numSamples) && isSilent (right, numSamples))
    {
        if (rover == 0)
            rover = latency;
        for (int i = 0; i < numSamples;)
        {
            const long run = std::min ((long) (numSamples - i), frameSize - rover);
            rover += run;
            i += (int) run;
            if (rover >= frameSize)
            {
                rover = latency;
                processFrame();
            }
        }
        zeroRun = std::min (zeroRun + numSamples, 2 * maxFrameSize);
        std::fill (left, left + numSamples, 0.0f);
        std::fill (right, right + numSamples, 0.0f);
        return;
    }

    for (int i = 0; i < numSamples; ++i)
    {
        float x = (left[i] + right[i]) * 0.5f;
        x = (std::abs (x + 1.0f) - std::abs (x - 1.0f)) * 0.5f;
        m[i] = x;
    }

    std::fill (out, out + numSamples, 0.0f);
    if (rover == 0)
        rover = latency;

    for (int i = 0; i < numSamples; ++i)
    {
        zeroRun = m[i] == 0.0f ? std::min (zeroRun + 1, 2 * maxFrameSize) : 0;
        inFifo[(size_t) rover] = m[i];
        out[i] = outFifo[(size_t) (rover - latency)];
        ++rover;
        if (rover >= frameSize)
        {
            rover = latency;
            processFrame();
        }
    }

    const float keep = 1.0f - g;
    for (int i = 0; i < numSamples; ++i)
    {
        left[i] *= keep;
        right[i] *= keep;
    }

    // The upper octave comes out quieter than the lower, hence its extra gain.
    const float c = ratio > 1.0f ? g * 1.2f : g * 1.0f;
    for (int i = 0; i < numSamples; ++i)
    {
        left[i] += c * out[i];
        right[i] += c * out[i];
    }
}

void Octaver::processFrame() noexcept
{
    // A frame of zeros after enough of them: the transforms would give zeros and the analysis the
    // same phase steps as last time, so only the synthesis phases advance.
    const bool silentInput = zeroRun >= frameSize;
    if (silentInput && silentFrames >= restingFrames && juce::exactlyEqual (silentStepRatio, ratio))
    {
        for (long k = 0; k <= halfFrame; ++k)
            sumPhase[(size_t) k] = (float) (phaseStep[(size_t) k] + sumPhase[(size_t) k]);
        return;
    }
    // The steps are those of every later silent frame once the last phases are zero, as a silent
    // frame leaves them.
    const bool stepsRepeat = silentInput && silentFrames >= 1;
    silentFrames = silentInput ? std::min (silentFrames + 1, restingFrames) : 0;
    silentStepRatio = stepsRepeat ? ratio : 0.0f;

    const auto& window = hannTable().values;
    float* ws = fftWorkspace.data();

    for (long k = 0; k < frameSize; ++k)
    {
        ws[2 * k] = (float) (inFifo[(size_t) k] * window[(size_t) k]);
        ws[2 * k + 1] = 0.0f;
    }

    fft (ws, frameSize, -1);

    if (! juce::exactlyEqual (binUseRatio, ratio))
        updateBinUse();

    // Passes without calls run as vectors: magnitudes first, then the phases of the bins that need one.
    const int bins = (int) halfFrame + 1;
    for (int k = 0; k < bins; ++k)
    {
        const double re = ws[2 * k];
        const double im = ws[2 * k + 1];
        anaMagn[(size_t) k] = (float) (2.0 * std::sqrt (re * re + im * im));
    }

    // A frequency nothing reads needs no phase yet: the bins wait for the frame that does.
    for (int k = 0; k < bins; ++k)
        if (binTarget[(size_t) k] < 0)
        {
            pendingRe[(size_t) k] = ws[2 * k];
            pendingIm[(size_t) k] = ws[2 * k + 1];
            phasePending[(size_t) k] = true;
        }
    for (long j = 0; j < targetCount; ++j)
    {
        const long k = targetBins[(size_t) j];
        if (phasePending[(size_t) k])
        {
            lastPhase[(size_t) k] = (float) std::atan2 ((double) pendingIm[(size_t) k], (double) pendingRe[(size_t) k]);
            phasePending[(size_t) k] = false;
        }
        gatheredRe[(size_t) j] = ws[2 * k];
        gatheredIm[(size_t) j] = ws[2 * k + 1];
        gatheredLastPhase[(size_t) j] = lastPhase[(size_t) k];
    }
    // The phase comes back in place of the real part, the frequency in place of the imaginary.
    const PhaseVocoderKernel::Analysis analysis { gatheredRe.data(), gatheredIm.data(), gatheredLastPhase.data(),
                                                  targetBinValues.data(), gatheredRe.data(), gatheredIm.data(),
                                                  targetCount, expectedPhaseStep, binFrequency, (double) oversampling };
    kernelDispatch() (analysis);
    for (long j = 0; j < targetCount; ++j)
    {
        const long k = targetBins[(size_t) j];
        lastPhase[(size_t) k] = (float) gatheredRe[(size_t) j];
        anaFreq[(size_t) k] = (float) gatheredIm[(size_t) j];
    }

    // Only the bins up to half the frame are ever written or read. Every bin's magnitude lands on its
    // index, the first one there on the zero it would be added to (0 + m is m for a magnitude); the
    // frequency only from the last bin there, the one binTarget names. Indices no bin reaches stay at
    // the zeros updateBinUse left.
    for (int k = 0; k < bins; ++k)
    {
        const long index = binIndex[(size_t) k];
        if (index >= 0)
            synMagn[(size_t) index] = binFirst[(size_t) k] ? anaMagn[(size_t) k] : synMagn[(size_t) index] + anaMagn[(size_t) k];
        if (binTarget[(size_t) k] >= 0)
            synFreq[(size_t) binTarget[(size_t) k]] = anaFreq[(size_t) k] * ratio;
    }

    for (int k = 0; k < bins; ++k)
    {
        const double d = ((synFreq[(size_t) k] - binFrequency * (double) k) / binFrequency) * 2.0 * pi / (double) oversampling
                         + expectedPhaseStep * (double) k;
        phaseStep[(size_t) k] = d;
        sumPhase[(size_t) k] = (float) (d + sumPhase[(size_t) k]);
    }

    kernelDispatch() (PhaseVocoderKernel::Synthesis { synMagn.data(), sumPhase.data(), ws, bins });

    std::fill (ws + 2 * (halfFrame + 1), ws + 2 * frameSize, 0.0f);

    fft (ws, frameSize, 1);

    const double norm = (double) (halfFrame * oversampling);
    for (long k = 0; k < frameSize; ++k)
        outputAccumulator[(size_t) k] += (float) (2.0 * window[(size_t) k] * ws[2 * k] / norm);

    std::copy (outputAccumulator.begin(), outputAccumulator.begin() + hop, outFifo.begin());
    std::copy (outputAccumulator.begin() + hop, outputAccumulator.begin() + hop + frameSize, outputAccumulator.begin());
    std::copy (inFifo.begin() + hop, inFifo.begin() + frameSize, inFifo.begin());
}

void Octaver::updateBinUse() noexcept
{
    binUseRatio = ratio;
    auto& lastSource = binSource;
    lastSource.fill (-1);
    std::fill (synMagn.begin(), synMagn.begin() + halfFrame + 1, 0.0f);
    std::fill (synFreq.begin(), synFreq.begin() + halfFrame + 1, 0.0f);
    for (long k = 0; k <= halfFrame; ++k)
    {
        const long index = (long) (ratio * (float) k);
        const bool inside = index >= 0 && index <= halfFrame;
        binIndex[(size_t) k] = inside ? index : -1;
        binFirst[(size_t) k] = inside && lastSource[(size_t) index] < 0;
        if (inside)
            lastSource[(size_t) index] = k;
    }
    for (long k = 0; k <= halfFrame; ++k)
    {
        const long index = binIndex[(size_t) k];
        binTarget[(size_t) k] = index >= 0 && lastSource[(size_t) index] == k ? index : -1;
    }
    targetCount = 0;
    for (long k = 0; k <= halfFrame; ++k)
        if (binTarget[(size_t) k] >= 0)
        {
            targetBins[(size_t) targetCount] = k;
            targetBinValues[(size_t) targetCount] = (double) k;
            ++targetCount;
        }
}
