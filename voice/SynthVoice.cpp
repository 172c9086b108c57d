// SPDX-License-Identifier: AGPL-3.0-or-later
// Note lifecycle, parameter intake and the per-sample loop of one voice.
#include "voice/SynthVoice.h"

#include <cmath>
#include <cstring>
#include <math.h>

#include "core/ParameterTable.h"

namespace
{
float readParameter (const SynthVoice::ParameterValues& values, int index)
{
    const auto* value = values[(size_t) index];
    return value != nullptr ? value->load (std::memory_order_relaxed) : 0.0f;
}

// One generator per thread for all voices on it, so placements of successive notes differ.
juce::Random& panRandom()
{
    static thread_local juce::Random random;
    return random;
}
} // namespace

juce::uint64 SynthVoice::noiseJump (int draws, juce::uint64 seed) noexcept
{
    // The generator's step s -> (a s + 11) mod 2^48, taken `draws` times at once: s -> A s + C with
    // A = a^draws and C = 11 (a^(draws-1) + ... + 1), all modulo 2^48 (unsigned wrap-around keeps it).
    static const auto jumps = []
    {
        std::array<std::pair<juce::uint64, juce::uint64>, (size_t) chunkSize + 1> table {};
        juce::uint64 a = 1, c = 0;
        for (size_t k = 0; k < table.size(); ++k)
        {
            table[k] = { a & 0xffffffffffffULL, c & 0xffffffffffffULL };
            a = a * 0x5deece66dULL;
            c = c * 0x5deece66dULL + 11;
        }
        return table;
    }();
    const auto& [a, c] = jumps[(size_t) juce::jlimit (0, chunkSize, draws)];
    return (seed * a + c) & 0xffffffffffffULL;
}

void SynthVoice::seedPlacement (juce::int64 seed) noexcept
{
    panRandom().setSeed (seed);
}

SynthVoice::SynthVoice()
{
    noiseRandom.setSeedRandomly();
    noiseJump (0, 0); // builds its table here rather than on the audio thread
}

void SynthVoice::prepareVoice (double sampleRate)
{
    envelope.sampleRate = (float) sampleRate;
    envelope.updateEnvelopeCoefficients();

    modulator.prepare (sampleRate);
    carrier.prepare (sampleRate);
    noiseFilter.prepare (sampleRate, 5500.0);
    vibratoLfo.prepare (sampleRate);

    folder.prepare (sampleRate);
    highPassA.prepare (sampleRate, 35.0f);
    highPassB.prepare (sampleRate, 25.0f);

    setCurrentPlaybackSampleRate (sampleRate);
}

void SynthVoice::pushParameters (const ParameterValues& values)
{
    using namespace ParameterIndex;
    const PushedValues read { readParameter (values, attack), readParameter (values, decay), readParameter (values, sustain),
                              readParameter (values, release), readParameter (values, timbre), readParameter (values, envmod),
                              readParameter (values, noise), readParameter (values, vibrato), readParameter (values, pitch),
                              readParameter (values, ws) };
    // An idle voice handed the values it already holds would end up exactly as it is: the only step
    // that reads the level is worked out again when a note starts, and the folder moves only on a change.
    if (envelope.state == VoiceEnvelope::idle && havePushed && std::memcmp (read.data(), pushed.data(), sizeof read) == 0)
        return;
    pushed = read;
    havePushed = true;

    envelope.setParameters (read[0], read[1], read[2], read[3]);

    const float timbre = read[4];
    timbreAmount = timbre * timbre;
    envelopeModAmount = read[5];
    const float noise = read[6];
    noiseAmount = (noise * 0.25f) * noise;
    const float vibrato = read[7];
    vibratoAmount = vibrato * vibrato;
    updateModulatorRatio (read[8]);

    folder.setEnabled (read[9] > 0.5f);
}

void SynthVoice::updateModulatorRatio (float p)
{
    // Several positions are tuned to just intervals or slightly detuned; the fifths below sound an
    // octave lower on the carrier, which the note offset supplies.
    double e = (double) p;
    int offset = 0;
    if (juce::exactlyEqual (p, 8.0f))
        e = (double) 7.01955f;
    else if (juce::exactlyEqual (p, -8.0f))
    {
        e = (double) -7.01955f;
        offset = -5;
    }
    else if (juce::exactlyEqual (p, 20.0f))
        e = 19.0;
    else if (juce::exactlyEqual (p, -20.0f))
    {
        e = -19.0;
        offset = -5;
    }
    else if (juce::exactlyEqual (p, -4.0f))
        e = (double) -4.98f;
    else if (juce::exactlyEqual (p, -16.0f))
        e = (double) -16.9f;
    else if (juce::exactlyEqual (p, 16.0f))
        e = (double) 15.86f;
    else if (juce::exactlyEqual (p, 4.0f))
        e = (double) 3.95f;

    noteOffset = offset;
    modulatorRatio = (float) std::pow (1.0594630943592953, e);
}

bool SynthVoice::canPlaySound (juce::SynthesiserSound* sound)
{
    return sound != nullptr;
}

void SynthVoice::startNote (int midiNoteNumber, float velocity, juce::SynthesiserSound*, int)
{
    noteFrequency = (float) std::pow (2.0, (noteOffset + midiNoteNumber - 69) / 12.0) * 440.0f;

    // The level is not reset: a stolen voice rises from where it stands, without a click.
    envelope.state = VoiceEnvelope::attack;

    const int q = juce::jmin ((int) (std::sqrt (velocity) * 128.0f + 0.5f), 123) + 4;
    float v = (float) q / 127.0f;
    v = v * v;
    envelope.velocityGain = v > 1.0f ? 1.0f : (v < 0.001f ? 0.0f : v);

    envelope.updateEnvelopeCoefficients();
    noteHeld = true;

    // Only the louder side is drawn anew, so successive notes of a voice wander across the field.
    const float r = panRandom().nextFloat();
    if (panGainLeft > panGainRight)
        panGainLeft = (float) ((double) r * -0.45 + 1.0);
    else if (panGainLeft < panGainRight)
        panGainRight = (float) ((double) r * -0.45 + 1.0);
    else
    {
        panGainLeft = 1.0f;
        panGainRight = 0.8f;
    }
}

void SynthVoice::stopNote (float, bool)
{
    // Always a tail-off: the render loop frees the voice once the envelope is idle.
    envelope.noteReleased (noteHeld);
    noteHeld = false;
}

void SynthVoice::pitchWheelMoved (int newPitchWheelValue)
{
    if (newPitchWheelValue == lastPitchWheel)
    {
        if (newPitchWheelValue == 8192)
            pitchBendRatio = 1.0f;
        return;
    }

    lastPitchWheel = newPitchWheelValue;
    if (newPitchWheelValue == 8192)
    {
        pitchBendRatio = 1.0f;
        return;
    }
    // Two semitones each way.
    const double d = newPitchWheelValue * 0.00012208 + (-1.00002035);
    pitchBendRatio = powf ((float) semitoneBase, (float) (d + d));
}

void SynthVoice::controllerMoved (int, int) {}

void SynthVoice::renderNextBlock (juce::AudioBuffer<float>& outputBuffer, int startSample, int numSamples)
{
    if (numSamples < 1)
        return;
    // Never write outside the buffer, whatever range a caller passes.
    const int count = startSample < 0 || outputBuffer.getNumChannels() < 1
                          ? 0
                          : juce::jmin (numSamples, outputBuffer.getNumSamples() - startSample);
    float* left = count > 0 ? outputBuffer.getWritePointer (0, startSample) : nullptr;
    float* right = count > 0 && outputBuffer.getNumChannels() > 1 ? outputBuffer.getWritePointer (1, startSample) : nullptr;

    const bool mixed = mixer != nullptr && mixer->holds (numSamples);
    renderVoice (left, right, count, mixed);
    // The synthesiser renders every voice for every stretch between its events; the last one mixes
    // what the others left.
    if (mixed && lastInMixer && count > 0)
        mixer->mixInto (left, right);
}

// Flattened so the filter steps inline. The work runs in short chunks, one stage after another:
// each stage's loop is small enough for the processor to overlap samples, and no call sits in the
// middle of the tone's loop. Every stage still runs its own steps in sample order, and each sample
// meets the same arithmetic as a plain per-sample loop would give it.
__attribute__ ((flatten)) void SynthVoice::renderVoice (float* left, float* right, int count, bool mixed)
{
    if (envelope.state == VoiceEnvelope::idle)
    {
        if (isVoiceActive())
            clearCurrentNote();
        return;
    }
    if (count < 1)
        return;

    for (int chunkStart = 0; chunkStart < count; chunkStart += chunkSize)
    {
        const int chunkLength = juce::jmin (chunkSize, count - chunkStart);

        // The per-sample recurrences (vibrato source, envelope, both phases) up to the sample at which
        // the note has ended, in one loop: they do not depend on each other, so they overlap in the
        // processor instead of waiting on one another. Worked on local copies so their states stay in
        // registers through the loop.
        int produced = 0;
        bool ended = false;
        {
            auto lfo = vibratoLfo;
            auto env = envelope;
            auto mod = modulator;
            auto car = carrier;
            const float fm = (modulatorRatio * noteFrequency) * pitchBendRatio;
            const float f = noteFrequency;
            const float b = pitchBendRatio;
            for (; produced < chunkLength; ++produced)
            {
                if (env.state == VoiceEnvelope::idle)
                {
                    ended = true;
                    break;
                }
                const float vibratoSource = lfo.process();
                vibratoChunk[(size_t) produced] = vibratoSource;
                envelopeChunk[(size_t) produced] = env.process();
                modulatorPhaseChunk[(size_t) produced] = mod.advance (fm);
                // Vibrato adds Hz in proportion to the note, unscaled by the bend.
                const float vib = vibratoAmount * (vibratoSource * 3.3f);
                carrierPhaseChunk[(size_t) produced] = car.advance (b * f + (f * vib) * 0.1f);
            }
            vibratoLfo = lfo;
            envelope = env;
            modulator = mod;
            carrier = car;
        }

        // With no noise level and a settled noise filter every noise sample is +0 (the filter flushes
        // a zero of either sign to +0), and with no modulation depth the modulator gives the carrier
        // a zero that adds nothing to the noise's value: those passes are skipped. The generator still
        // moves on by as many draws as it would have made.
        const bool noiseSilent = juce::exactlyEqual (noiseAmount, 0.0f) && juce::exactlyEqual (noiseFilter.z, 0.0f);
        const bool modulatorSilent = juce::exactlyEqual (envelopeModAmount, 0.0f) && juce::exactlyEqual (timbreAmount, 0.0f);

        // The generator's own steps, written out so they inline: the same draws as nextFloat.
        if (noiseSilent)
            noiseRandom.setSeed ((juce::int64) noiseJump (produced, (juce::uint64) noiseRandom.getSeed()));
        else
        {
            auto seed = (juce::uint64) noiseRandom.getSeed();
            for (int i = 0; i < produced; ++i)
            {
                seed = (seed * 0x5deece66dULL + 11) & 0xffffffffffffULL;
                const float r = (float) (juce::uint32) (int) (seed >> 16) / ((float) std::numeric_limits<juce::uint32>::max() + 1.0f);
                noiseChunk[(size_t) i] = juce::jmin (r, 1.0f - std::numeric_limits<float>::epsilon());
            }
            noiseRandom.setSeed ((juce::int64) seed);
        }

        {
            // Everything else depends only on its own sample (but the noise filter), so those passes
            // run as vectors.
            if (modulatorSilent)
                std::fill (modulationChunk.begin(), modulationChunk.begin() + produced, 0.0f);
            else
                for (int i = 0; i < produced; ++i)
                {
                    const double m = PhaseOscillator::shape (PhaseOscillator::wrapBranchless (
                        modulatorPhaseChunk[(size_t) i] + PhaseOscillator::radiansToCycles * 0.8999999761581421));
                    // Only the modulator's positive half reaches the carrier.
                    const float depth = envelopeModAmount * envelopeChunk[(size_t) i] + timbreAmount;
                    float pm = depth * (float) m;
                    pm = pm > 1.0f ? 1.0f : pm;
                    pm = pm < 0.0f ? 0.0f : pm;
                    modulationChunk[(size_t) i] = pm;
                }

            if (noiseSilent)
                std::fill (noiseChunk.begin(), noiseChunk.begin() + produced, 0.0f);
            else
            {
                for (int i = 0; i < produced; ++i)
                {
                    const float envelopeOut = envelopeChunk[(size_t) i];
                    const float vib = vibratoAmount * (vibratoChunk[(size_t) i] * 3.3f);
                    const float pm = modulationChunk[(size_t) i];
                    float n = noiseChunk[(size_t) i] * (noiseAmount - vib * noiseAmount);
                    n = n * (pm * pm + 1.0f);
                    noiseChunk[(size_t) i] = (envelopeModAmount * envelopeOut + 1.0f) * n;
                }
                auto noise = noiseFilter;
                for (int i = 0; i < produced; ++i)
                    noiseChunk[(size_t) i] = noise.process (noiseChunk[(size_t) i]);
                noiseFilter = noise;
            }

            for (int i = 0; i < produced; ++i)
            {
                const double cp = PhaseOscillator::wrapBranchless (
                    (double) (modulationChunk[(size_t) i] + noiseChunk[(size_t) i]) * PhaseOscillator::radiansToCycles + carrierPhaseChunk[(size_t) i]);
                signalChunk[(size_t) i] = envelopeChunk[(size_t) i] * (float) PhaseOscillator::shape (cp);
            }
            if (folder.isActive())
                for (int i = 0; i < produced; ++i)
                    signalChunk[(size_t) i] = folder.process (signalChunk[(size_t) i], timbreAmount);
        }

        if (mixed)
        {
            for (int i = 0; i < produced; ++i)
                mixer->input (mixerSlot, chunkStart + i) = signalChunk[(size_t) i];
        }
        else
        {
            // The filters and gains are worked on local copies: stores into the output could otherwise
            // reach them, and every sample would wait on their reload.
            float* l = left + chunkStart;
            auto a = highPassA;
            auto b = highPassB;
            const float gainLeft = panGainLeft;
            if (right != nullptr)
            {
                float* r = right + chunkStart;
                const float gainRight = panGainRight;
                for (int i = 0; i < produced; ++i)
                {
                    const float y = b.processSample (a.processSample (signalChunk[(size_t) i]));
                    l[i] += y * gainLeft;
                    r[i] += y * gainRight;
                }
            }
            else
            {
                for (int i = 0; i < produced; ++i)
                    l[i] += b.processSample (a.processSample (signalChunk[(size_t) i])) * gainLeft;
            }
            highPassA = a;
            highPassB = b;
        }

        if (ended)
        {
            if (mixed)
                mixer->contribute (mixerSlot, chunkStart + produced, highPassA, highPassB, panGainLeft, panGainRight);
            if (isVoiceActive())
                clearCurrentNote();
            return;
        }
    }
    if (mixed)
        mixer->contribute (mixerSlot, count, highPassA, highPassB, panGainLeft, panGainRight);
}
