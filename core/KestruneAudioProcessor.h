// SPDX-License-Identifier: AGPL-3.0-or-later
// The plug-in's one audio processor: parameters, presets, synthesiser and the whole effect chain.
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_dsp/juce_dsp.h>

#include "core/DcBlocker.h"
#include "core/ParameterTable.h"
#include "core/PolyGain.h"
#include "effects/BlockDelay.h"
#include "effects/Flanger.h"
#include "effects/Octaver.h"
#include "effects/ReverbStage.h"
#include "effects/TiltEqualiser.h"
#include "presets/PresetManager.h"
#include "voice/SynthVoice.h"

class KestruneAudioProcessor : public juce::AudioProcessor
{
public:
    KestruneAudioProcessor();
    ~KestruneAudioProcessor() override;

    void prepareToPlay (double sampleRate, int samplesPerBlock) override;
    void releaseResources() override;
    bool isBusesLayoutSupported (const BusesLayout& layouts) const override;
    void processBlock (juce::AudioBuffer<float>&, juce::MidiBuffer&) override;
    using juce::AudioProcessor::processBlock;

    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override { return true; }

    const juce::String getName() const override { return "ondrivel"; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    bool isMidiEffect() const override { return false; }
    bool supportsMPE() const override { return false; }
    double getTailLengthSeconds() const override { return 0.0; }

    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override;
    const juce::String getProgramName (int) override { return currentProgramName; }
    void changeProgramName (int, const juce::String& newName) override { currentProgramName = newName; }

    void getStateInformation (juce::MemoryBlock& destData) override;
    void setStateInformation (const void* data, int sizeInBytes) override;

    const juce::String getInputChannelName (int channelIndex) const override { return juce::String (channelIndex + 1); }
    const juce::String getOutputChannelName (int channelIndex) const override { return juce::String (channelIndex + 1); }

    // Zeroes the delay planes and recomputes the delay's rate-dependent constants.
    void resetBlockDelay();

    juce::AudioProcessorValueTreeState::ParameterLayout createParameterLayout();

    float getParameterValue (int index) const { return parameterValues[(size_t) index]->load (std::memory_order_relaxed); }
    int getHeldNotes() const { return heldNotes; }
    float getPolyGainTarget() const { return polyGain.getTarget(); }
    double getHostBpm() const { return hostBpm; }

    juce::String dataFolder;
    juce::File dataFolderFile;
    juce::String currentProgramName;

    juce::UndoManager undoManager;
    juce::AudioProcessorValueTreeState parameters;

    juce::ValueTree selection { "selection" };
    velkaro::PresetManager presetManager;

    juce::MidiKeyboardState keyboardState;

    std::array<std::atomic<float>*, numParameters> parameterValues {};
    std::array<float, numParameters> lastParameterValues {};

    bool octaverOn = false;
    bool delayOn = false;
    bool flangerOn = false;
    bool flangerPre = false;

    BlockDelay blockDelay;
    Octaver octaver;
    double hostBpm = 120.0;
    double currentSampleRate = 48000.0;

    Flanger flanger;
    int flangerMaxBlock = 1; // the block size the flanger was prepared for

    TiltEqualiser tilt;

    std::array<DcBlocker, 2> dcBlockerReverb;
    std::array<DcBlocker, 2> dcBlockerMain;

    ReverbStage reverbStage;

    juce::Synthesiser synth;
    int numVoices = 8;
    // The synthesiser's voices, found once: a lookup per block would take its lock and a cast.
    std::vector<SynthVoice*> voices;
    VoiceMixer voiceMixer;

    PolyGain polyGain;
    int heldNotes = 0;

private:
    void countHeldNotes (const juce::MidiBuffer& midi, int numSamples);
    void applyModWheel (const juce::MidiBuffer& midi);
    void runFlanger (juce::AudioBuffer<float>& wet, int numSamples);

    // Kept as members so that the audio thread does not allocate.
    juce::AudioBuffer<float> wetBuffer;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (KestruneAudioProcessor)
};
