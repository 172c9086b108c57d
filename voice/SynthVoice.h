// SPDX-License-Identifier: AGPL-3.0-or-later
// One two-operator phase-modulation voice with phase noise, vibrato, an envelope, a wave folder
// and a random stereo placement per note. Allocation and stealing are juce::Synthesiser's.
#pragma once

#include <array>
#include <atomic>
#include <juce_audio_basics/juce_audio_basics.h>
#include <juce_dsp/juce_dsp.h>

#include "voice/OnePole.h"
#include "voice/PhaseOscillator.h"
#include "voice/VibratoLfo.h"
#include "voice/VoiceHighPass.h"
#include "voice/VoiceMixer.h"
#include "voice/VoiceEnvelope.h"
#include "voice/WaveFolder.h"

class SynthVoice : public juce::SynthesiserVoice
{
public:
    using ParameterValues = std::array<std::atomic<float>*, 30>;

    SynthVoice();

    // Sets everything that depends on the sample rate; not to be called while the voice renders.
    void prepareVoice (double sampleRate);
    // Copies this block's parameter values into the voice; runs before the block's MIDI.
    void pushParameters (const ParameterValues& values);

    bool canPlaySound (juce::SynthesiserSound*) override;
    void startNote (int midiNoteNumber, float velocity, juce::SynthesiserSound*, int currentPitchWheelPosition) override;
    void stopNote (float velocity, bool allowTailOff) override;
    void pitchWheelMoved (int newPitchWheelValue) override;
    void controllerMoved (int controllerNumber, int newControllerValue) override;
    void renderNextBlock (juce::AudioBuffer<float>& outputBuffer, int startSample, int numSamples) override;
    using juce::SynthesiserVoice::renderNextBlock;

    // Hands the voice's filters and placement to a mixer shared by the synthesiser's voices: `slot` is
    // its place in the synthesiser's order, `last` marks the voice rendered last, which mixes.
    void joinMixer (VoiceMixer* sharedMixer, int slot, bool last) noexcept
    {
        mixer = sharedMixer;
        mixerSlot = slot;
        lastInMixer = last;
    }

    // Restarts the voice's noise source, and the placement source of the calling thread, from fixed
    // seeds, so that a render can be repeated sample for sample.
    void seedGenerators (juce::int64 noiseSeed) noexcept { noiseRandom.setSeed (noiseSeed); }
    static void seedPlacement (juce::int64 seed) noexcept;

    // The note's placement and envelope as they stand, for whoever drives the voice.
    float getPanGainLeft() const noexcept { return panGainLeft; }
    float getPanGainRight() const noexcept { return panGainRight; }
    float getEnvelopeLevel() const noexcept { return envelope.level; }
    int getEnvelopeState() const noexcept { return envelope.state; }

private:
    // `count` samples from `left` and `right` (null for a mono buffer); none where the range was not the buffer's.
    void renderVoice (float* left, float* right, int count, bool mixed);
    void updateModulatorRatio (float pitchParameter);
    // The noise generator's seed after `draws` steps (at most one chunk) from `seed`.
    static juce::uint64 noiseJump (int draws, juce::uint64 seed) noexcept;

    // Per-sample state first, so the render loop touches as few cache lines as possible.
    VoiceEnvelope envelope;
    PhaseOscillator modulator;
    PhaseOscillator carrier;
    OnePole noiseFilter;
    VibratoLfo vibratoLfo;

    float noteFrequency = 440.0f;
    float pitchBendRatio = 1.0f;
    float modulatorRatio = 0.5f;
    float timbreAmount = 0.0f;
    float envelopeModAmount = 0.0f;
    float noiseAmount = 0.0f;
    float vibratoAmount = 0.0f;
    float panGainLeft = 1.0f;
    float panGainRight = 1.0f;

    juce::Random noiseRandom { 1 };

    WaveFolder folder;
    // One chunk of each stage's output, handed from stage to stage in the render loop.
    static constexpr int chunkSize = 64;
    std::array<float, (size_t) chunkSize> vibratoChunk {};
    std::array<float, (size_t) chunkSize> envelopeChunk {};
    std::array<float, (size_t) chunkSize> noiseChunk {};
    std::array<float, (size_t) chunkSize> signalChunk {};
    std::array<float, (size_t) chunkSize> modulationChunk {};
    std::array<double, (size_t) chunkSize> modulatorPhaseChunk {};
    std::array<double, (size_t) chunkSize> carrierPhaseChunk {};
    VoiceHighPass highPassA;
    VoiceHighPass highPassB;

    // The values of the last push, in the order pushParameters reads them.
    using PushedValues = std::array<float, 10>;
    PushedValues pushed {};
    bool havePushed = false;

    VoiceMixer* mixer = nullptr;
    int mixerSlot = 0;
    bool lastInMixer = false;

    int noteOffset = 0;
    double semitoneBase = 1.0594630943592953;
    int lastPitchWheel = 8192;
    bool noteHeld = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (SynthVoice)
};
