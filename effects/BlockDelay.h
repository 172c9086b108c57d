// SPDX-License-Identifier: AGPL-3.0-or-later
// Records the wet signal in blocks of a set length, freezes a windowed copy of each full block and plays it
// during the next one, forwards or backwards, with ring and pitch modulation and whole-block repeats.
#pragma once

#include <cstdlib>
#include <memory>

#include <juce_audio_basics/juce_audio_basics.h>

#include "effects/TiltEqualiser.h"

class BlockDelay
{
public:
    static constexpr int planeSize = 262144;
    static constexpr int planeMask = 0x3FFFF;
    static constexpr int maxBlockLength = 262143; // leaves room for the window's inclusive end index

    struct Settings
    {
        float time, sync, fmit, squeezeit, fdbk, envms, revmix, rev;
        double hostBpm;
        float sampleRate;
    };

    // Zeroes the planes and derives the rate-dependent constants; positions and block length survive.
    void reset (double sampleRate);
    void setupBlock (const Settings&);
    // One pass over the wet buffer: delay, mix (if delayOn) and the tilt filter at the end of each sample.
    void process (juce::AudioBuffer<float>& wet, int numSamples, bool delayOn, float revmix, TiltEqualiser& tilt);

    int getBlockLength() const noexcept { return blockLen; }

private:
    void processSample (float& left, float& right, bool delayOn, float revmix, TiltEqualiser& tilt) noexcept;
    float stepEnvelope() noexcept;
    // (blockLen + writePos) modulo (blockLen + 1), for the write position's range 0 to blockLen.
    int tapBehindWrite() const noexcept { return writePos > 0 ? writePos - 1 : blockLen; }
    bool canRest (const float* left, const float* right, int numSamples, const TiltEqualiser& tilt) const noexcept;
    // Moves envelope and positions over silence that finds nothing in the planes.
    void rest (int numSamples) noexcept;
    void freezeBlock() noexcept;
    void clearPlanes() noexcept;

    // The four planes in one zeroed block from the system, taken at construction: pages the delay
    // never writes (lengths up to the longest, 5.5 s at 48 kHz) are never made resident.
    struct FreeBlock { void operator() (float* p) const noexcept { std::free (p); } };
    std::unique_ptr<float, FreeBlock> planes { static_cast<float*> (std::calloc (4 * (size_t) planeSize, sizeof (float))) };
    float* const recordL = planes.get();
    float* const recordR = recordL + planeSize;
    float* const playL = recordR + planeSize;
    float* const playR = playL + planeSize;
    int writtenEnd = 2; // no plane has been written at or beyond this index since the last clearing

    int writePos = 0;
    int readPos = 0;
    int blockLen = 1;
    int lastBlockLen = 0;

    float feedback = 0.0f;

    float fmAmount = 0.0f;
    float fmSmoothed = 0.0f;
    float fmSmoothCoeff = 0.9f;
    double fmDepth = 0.0001;

    int squeeze = 0;
    double ringSmoothed = 0.0;

    bool reverse = true;

    float env = 0.0f;
    float envMax = 1.0f;
    float rampStep = 0.02f;
    int rampLen = 800;
    float rampLenF = 400.0f;

    float sampleRateF = 48000.0f;

    bool cycleSound = false;  // something other than zero was recorded since the block began
    bool planesClear = true;  // all four planes hold only zeros
};
