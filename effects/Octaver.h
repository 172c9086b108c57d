// SPDX-License-Identifier: AGPL-3.0-or-later
// Phase-vocoder octaver: a 2048-sample frame at 8 times overlap on a mono mix of the wet signal,
// every bin moved to twice or half its frequency. Frames run across block borders.
#pragma once

#include <array>

#include <juce_audio_basics/juce_audio_basics.h>

#include "effects/FloatFft.h"

class Octaver
{
public:
    static constexpr long maxFrameSize = 8192;

    Octaver();

    // Sets the frame constants for the rate and sizes the block buffers; clears the analysis state
    // but keeps the FIFO position.
    void prepare (double sampleRate, int samplesPerBlock);

    // Adds the shifted octave to both wet channels: `mix` is `octave` (0 leaves the wet signal as it
    // is, 1 replaces it), `ratio` 2 shifts up, 0.5 down.
    void process (juce::AudioBuffer<float>& wet, int numSamples, float mix, float ratio) noexcept;

    // The in-place transform the frames use (sign -1 forward, +1 inverse, unscaled).
    void fft (float* workspace, long size, long sign) const noexcept;

    // The analysis and synthesis window; tabled, each entry as the formula gives it.
    static double windowAt (long k) noexcept;

    long getFrameSize() const noexcept { return frameSize; }
    long getHop() const noexcept { return hop; }

private:
    void processChunk (juce::AudioBuffer<float>& wet, int start, int numSamples, float mix) noexcept;
    void processFrame() noexcept;
    void updateBinUse() noexcept;

    std::array<float, maxFrameSize> inFifo {};
    std::array<float, maxFrameSize> outFifo {};
    std::array<float, 2 * maxFrameSize> fftWorkspace {};
    std::array<float, maxFrameSize / 2 + 1> lastPhase {};
    std::array<float, maxFrameSize / 2 + 1> sumPhase {};
    std::array<float, 2 * maxFrameSize> outputAccumulator {};
    std::array<float, maxFrameSize> anaFreq {};
    std::array<float, maxFrameSize> anaMagn {};
    std::array<float, maxFrameSize> synFreq {};
    std::array<float, maxFrameSize> synMagn {};

    // Where each bin lands at `binUseRatio`. A bin's frequency is kept only where its index lies inside
    // the half frame and no later bin lands on it; a bin whose frequency is not kept holds its last
    // values instead of their phase, and the phase is taken from them when a frame needs it.
    std::array<long, maxFrameSize / 2 + 1> binIndex {};  // the synthesis index of each bin, or -1
    std::array<long, maxFrameSize / 2 + 1> binTarget {};
    std::array<bool, maxFrameSize / 2 + 1> binFirst {};  // the first bin landing on its index // that index where the bin's frequency is kept, or -1
    std::array<bool, maxFrameSize / 2 + 1> phasePending {};
    std::array<float, maxFrameSize / 2 + 1> pendingRe {};
    std::array<float, maxFrameSize / 2 + 1> pendingIm {};
    float binUseRatio = 0.0f;
    std::array<long, maxFrameSize / 2 + 1> binSource {}; // the last bin landing on each index
    // The bins whose frequency is kept, in order, and a frame's values of them gathered for the kernel.
    std::array<long, maxFrameSize / 2 + 1> targetBins {};
    std::array<double, maxFrameSize / 2 + 1> targetBinValues {};
    long targetCount = 0;
    std::array<double, maxFrameSize / 2 + 1> gatheredRe {};
    std::array<double, maxFrameSize / 2 + 1> gatheredIm {};
    std::array<double, maxFrameSize / 2 + 1> gatheredLastPhase {};

    // The synthesis phase step of each bin in the last frame; a silent frame repeats it.
    std::array<double, maxFrameSize / 2 + 1> phaseStep {};
    // Silent frames in a row after which the overlap-add and output FIFOs hold only zeros.
    static constexpr long restingFrames = 10;
    long silentFrames = restingFrames;
    long zeroRun = 2 * maxFrameSize;  // zero inputs in a row
    float silentStepRatio = 0.0f;     // the ratio phaseStep holds a silent frame's steps for, or 0

    long rover = 0;
    long frameSize = 2048;
    long halfFrame = 1024;
    long hop = 256;
    long latency = 2048 - 256;
    long oversampling = 8;
    double binFrequency = 48000.0 / 2048.0;
    double expectedPhaseStep = 3.14159265358979323846 / 4.0; // 2 pi hop / frame
    float ratio = 0.5f;

    FloatFft transformer { 2048 };
    juce::AudioBuffer<float> mono;
    juce::AudioBuffer<float> output;
};
