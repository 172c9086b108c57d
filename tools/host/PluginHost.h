// SPDX-License-Identifier: AGPL-3.0-or-later
// Loads a VST3 bundle, or an LV2 bundle or URI, through the framework's hosting, as a DAW does, and
// drives it offline: parameters, scheduled MIDI, block rendering at a fixed tempo, and the plug-in's
// state block.
#pragma once

#include <memory>
#include <vector>

#include <juce_audio_processors/juce_audio_processors.h>

#include "TempoPlayHead.h"

class PluginHost
{
public:
    // Loads the first plug-in of the bundle and prepares it. On failure returns nullptr and says why.
    static std::unique_ptr<PluginHost> load (const juce::File& bundle, double sampleRate, int blockSize,
                                             juce::String& error);
    // The same for a bundle path (.vst3 or .lv2) or an LV2 plug-in's URI.
    static std::unique_ptr<PluginHost> load (const juce::String& pathOrUri, double sampleRate, int blockSize,
                                             juce::String& error);
    static bool isLv2Uri (const juce::String& text);
    ~PluginHost();

    juce::AudioPluginInstance& getInstance() noexcept { return *instance; }
    const juce::PluginDescription& getDescription() const noexcept { return description; }
    double getSampleRate() const noexcept { return sampleRate; }
    int getBlockSize() const noexcept { return blockSize; }
    int getNumChannels() const noexcept { return buffer.getNumChannels(); }

    // Re-prepares the plug-in; the render position starts again at 0 and pending MIDI is dropped.
    void prepare (double newSampleRate, int newBlockSize);
    void setTempo (double bpm);

    // The plug-in's own parameters in its order: the VST3 wrapper's bypass and MIDI-controller
    // parameters are left out (they are not automatable, or are the bypass).
    const juce::Array<juce::AudioProcessorParameter*>& getParameters() const noexcept { return parameters; }
    // The parameter that the plug-in created under this id (its VST3 id is derived from it), or nullptr.
    juce::AudioProcessorParameter* findParameter (const juce::String& pluginParameterId) const;
    // Sets a value in the plug-in's own units; the plug-in maps it through its range. Takes effect
    // with the next rendered block.
    static void setParameterValue (juce::AudioProcessorParameter& parameter, double value);

    // MIDI at absolute sample positions. At one position note-offs are delivered before note-ons,
    // otherwise in the order scheduled.
    void scheduleMidi (juce::int64 samplePosition, const juce::MidiMessage& message);
    void scheduleNote (int noteNumber, int velocity, juce::int64 onSample, juce::int64 offSample);

    // Renders the next `numFrames` frames (1 to the block size) and returns them.
    const juce::AudioBuffer<float>& renderNext (int numFrames);
    juce::int64 getPosition() const noexcept { return position; }

    // The program names a VST3 host's program menu lists (the plug-in's unit info). The framework's
    // own program calls see none when a plug-in has a single program.
    juce::StringArray getProgramNames();

    // The block the plug-in's getStateInformation wrote, without what the VST3 wrapper appends.
    juce::MemoryBlock getState();
    // Hands a state block to the plug-in the way a host restores a project.
    void setState (const void* data, size_t size);

private:
    struct ScheduledEvent
    {
        juce::int64 sample;
        int rank; // note-offs first at one sample
        juce::MidiMessage message;
    };

    PluginHost (std::unique_ptr<juce::AudioPluginInstance>, const juce::PluginDescription&);
    bool isLv2() const { return description.pluginFormatName == "LV2"; }
    void collectMidi (int numFrames);

    std::unique_ptr<juce::AudioPluginInstance> instance;
    juce::PluginDescription description;
    juce::Array<juce::AudioProcessorParameter*> parameters;
    TempoPlayHead playHead;

    double sampleRate = 48000.0;
    int blockSize = 256;
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer midi;
    std::vector<ScheduledEvent> events;
    size_t nextEvent = 0;
    bool eventsSorted = true;
    juce::int64 position = 0;

    JUCE_DECLARE_NON_COPYABLE (PluginHost)
};
