// SPDX-License-Identifier: AGPL-3.0-or-later
#include "core/KestruneAudioProcessor.h"

#include "core/SoftClipper.h"
#include "core/XmlText.h"
#include "effects/SilenceCheck.h"
#include "editor/PelvaneAudioProcessorEditor.h"
#include "voice/SynthSound.h"
#include "voice/SynthVoice.h"

namespace
{
using Attributes = juce::AudioParameterFloatAttributes;
using StringFromValue = std::function<juce::String (float, int)>;
} // namespace

juce::AudioProcessorValueTreeState::ParameterLayout KestruneAudioProcessor::createParameterLayout()
{
    juce::AudioProcessorValueTreeState::ParameterLayout layout;

    for (const auto& row : parameterTable)
    {
        juce::NormalisableRange<float> range ((float) row.min, (float) row.max, (float) row.interval, 1.0f, false);
        auto attributes = Attributes().withAutomatable (true).withMeta (false).withInverted (false)
                              .withCategory (juce::AudioProcessorParameter::genericParameter).withLabel ({});

        StringFromValue text = fourDecimalsText;
        switch (row.index)
        {
            case ParameterIndex::time:
                range.skew = 0.8f;
                text = [this] (float value, int) { return timeOrSyncText (value, getParameterValue (ParameterIndex::sync)); };
                break;
            case ParameterIndex::fmit: range.skew = 0.37f; text = multiplierText; break;
            case ParameterIndex::squeezeit:
                range.skew = 0.37f;
                range.symmetricSkew = true;
                text = multiplierText;
                break;
            case ParameterIndex::envms: range.skew = 0.4f; text = millisecondsText; break;
            case ParameterIndex::rate: range.skew = 0.4f; text = nullptr; attributes = attributes.withLabel (" Hz"); break;
            case ParameterIndex::flangerit: text = offOrTwoDecimalsText; break;
            case ParameterIndex::pitch: text = signedSemitoneText; break;
            case ParameterIndex::attack:
            case ParameterIndex::decay:
            case ParameterIndex::release: range.skew = 0.5f; break;
            case ParameterIndex::volume: range.skew = 0.2f; text = nullptr; break;
            case ParameterIndex::reverb: text = offOrBlankText; break;
            default: break;
        }
        if (text)
            attributes = attributes.withStringFromValueFunction (text);

        layout.add (std::make_unique<juce::AudioParameterFloat> (juce::ParameterID (row.id, 1), row.name, range,
                                                                 (float) row.defaultValue, attributes));
    }
    return layout;
}

KestruneAudioProcessor::KestruneAudioProcessor()
    : juce::AudioProcessor (BusesProperties().withOutput ("Output", juce::AudioChannelSet::stereo(), true)),
      parameters (*this, &undoManager, "ondrivel", createParameterLayout()),
      presetManager (parameters, selection)
{
    lastParameterValues.fill (-1.0f);
    flanger.setCentreDelay (2.23f);
    flanger.setDepth (0.11f);

    setPlayConfigDetails (0, 2, 44100.0, 512);

    if (! parameters.state.isValid())
        parameters.state = juce::ValueTree ("ondrivel");
    presetManager.readyPresetFolder();

    dataFolder = juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory).getFullPathName()
                 + "/" + "Velkaro Data" + "/" + "ondrivel";
    dataFolderFile = juce::File (dataFolder);
    const auto result = dataFolderFile.createDirectory();
    if (dataFolder.isNotEmpty() && dataFolderFile.exists())
        dataFolderFile.setAsCurrentWorkingDirectory();
    // The callback keeps the box asynchronous: without one, the framework runs it as a modal loop
    // (modal loops are enabled), holding up the host. Without a display (a headless render) the
    // framework would fault while laying the box out.
    if (result.failed() && juce::Desktop::getInstance().getDisplays().getPrimaryDisplay() != nullptr)
        juce::AlertWindow::showMessageBoxAsync (juce::MessageBoxIconType::NoIcon, dataFolder, result.getErrorMessage(), "OK",
                                                nullptr, juce::ModalCallbackFunction::create ([] (int) {}));

    currentProgramName = "no name";

    for (const auto& row : parameterTable)
        parameterValues[(size_t) row.index] = parameters.getRawParameterValue (row.id);

    synth.addSound (new SynthSound());
    for (int i = 0; i < numVoices; ++i)
        voices.push_back (dynamic_cast<SynthVoice*> (synth.addVoice (new SynthVoice())));
    if (numVoices <= VoiceMixer::maxVoices)
        for (int i = 0; i < numVoices; ++i)
            voices[(size_t) i]->joinMixer (&voiceMixer, i, i == numVoices - 1);

    presetManager.scanPresets();
}

KestruneAudioProcessor::~KestruneAudioProcessor() = default;

void KestruneAudioProcessor::prepareToPlay (double sampleRate, int samplesPerBlock)
{
    keyboardState.reset();
    setLatencySamples (0);
    synth.setCurrentPlaybackSampleRate (sampleRate);
    synth.setNoteStealingEnabled (true);

    currentSampleRate = sampleRate;
    for (auto& dc : dcBlockerReverb) dc.prepare (sampleRate);
    for (auto& dc : dcBlockerMain) dc.prepare (sampleRate);

    octaver.prepare (sampleRate, samplesPerBlock);

    flangerMaxBlock = juce::jmax (1, samplesPerBlock);
    flanger.prepare ({ sampleRate, (juce::uint32) flangerMaxBlock, 2 });
    flanger.setCentreDelay (2.23f);
    flanger.setDepth (0.11f);

    reverbStage.prepare (sampleRate);

    resetBlockDelay();

    for (auto* voice : voices)
        voice->prepareVoice (sampleRate);
    voiceMixer.prepare (samplesPerBlock);

    polyGain.reset ((int) (sampleRate * 0.01));

    wetBuffer.setSize (2, juce::jmax (1, samplesPerBlock), false, true, false);
}

void KestruneAudioProcessor::releaseResources()
{
    keyboardState.reset();
    resetBlockDelay();
}

void KestruneAudioProcessor::resetBlockDelay()
{
    blockDelay.reset (currentSampleRate);
}

bool KestruneAudioProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    // An instrument without audio input: its own layout, nothing in and stereo out, is the only one.
    return layouts.getMainInputChannelSet().isDisabled()
           && layouts.getMainOutputChannelSet() == juce::AudioChannelSet::stereo();
}

void KestruneAudioProcessor::countHeldNotes (const juce::MidiBuffer& midi, int numSamples)
{
    for (const auto metadata : midi)
    {
        if (metadata.samplePosition < 0 || metadata.samplePosition >= numSamples)
            continue;
        const auto message = metadata.getMessage();
        if (message.isNoteOn())
        {
            const int old = heldNotes;
            heldNotes = old + 1;
            polyGain.setTarget (old < 0 ? 1.0f : (float) (1.0 / (old + 1)));
        }
        else if (message.isNoteOff())
        {
            const int old = heldNotes;
            heldNotes = old - 1;
            polyGain.setTarget (old > 1 ? (float) (1.0 / (old - 1)) : 1.0f);
        }
    }
}

void KestruneAudioProcessor::applyModWheel (const juce::MidiBuffer& midi)
{
    for (const auto metadata : midi)
    {
        const auto message = metadata.getMessage();
        if (message.isController() && message.getControllerNumber() == 1)
        {
            if (auto* parameter = parameters.getParameter ("vibrato"))
            {
                const float value = (float) (message.getControllerValue() / 127.0);
                parameter->setValue (value);
                parameter->sendValueChangedMessageToListeners (value);
            }
        }
    }
}

void KestruneAudioProcessor::runFlanger (juce::AudioBuffer<float>& wet, int numSamples)
{
    const float x = getParameterValue (ParameterIndex::flangerit);
    const float magnitude = std::abs (x);
    flanger.setRate (getParameterValue (ParameterIndex::rate));
    flanger.setFeedback ((float) ((x > 0.0f ? -0.62 : 0.62) * (magnitude * 0.2 + 1.0)));
    flanger.setMix (magnitude);

    // The chorus holds scratch space for the prepared block size only, so a longer host block runs in
    // pieces; its state carries across them exactly as across blocks.
    auto block = juce::dsp::AudioBlock<float> (wet).getSubsetChannelBlock (0, (size_t) juce::jmin (2, wet.getNumChannels()));
    for (int start = 0; start < numSamples; start += flangerMaxBlock)
    {
        auto piece = block.getSubBlock ((size_t) start, (size_t) juce::jmin (flangerMaxBlock, numSamples - start));
        flanger.process (juce::dsp::ProcessContextReplacing<float> (piece));
    }
}

void KestruneAudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    juce::ScopedNoDenormals noDenormals;
    const int n = buffer.getNumSamples();

    for (int ch = getTotalNumInputChannels(); ch < getTotalNumOutputChannels(); ++ch)
        buffer.clear (ch, 0, n);

    if (auto* playHead = getPlayHead())
    {
        if (const auto position = playHead->getPosition())
        {
            if (const auto bpm = position->getBpm())
                hostBpm = *bpm;
        }
        else
            hostBpm = 120.0;
    }
    else
        hostBpm = 120.0;

    for (auto* voice : voices)
        voice->pushParameters (parameterValues);

    keyboardState.processNextMidiBuffer (midi, 0, n, true);
    // With no event and no voice sounding, the synthesiser would only hand every voice a block that
    // each leaves as it is; it is not woken (nor its lock taken) for that.
    const bool voicesSound = std::any_of (voices.begin(), voices.end(), [] (const SynthVoice* voice)
                                          { return voice->isVoiceActive() || voice->getEnvelopeState() != VoiceEnvelope::idle; });
    if (voicesSound || ! midi.isEmpty())
        synth.renderNextBlock (buffer, midi, 0, n);

    countHeldNotes (midi, n);
    applyModWheel (midi);
    midi.clear();

    // Silence from the voices into blockers that hold nothing comes out of the first stages as zeros.
    const int numChannels = juce::jmin (2, buffer.getNumChannels());
    const bool mainQuiet = buffer.getNumChannels() == 2 && dcBlockerMain[0].isClear() && dcBlockerMain[1].isClear()
                           && isSilent (buffer.getReadPointer (0), n) && isSilent (buffer.getReadPointer (1), n);

    // Plain loops: the buffer helpers skip gains near 0 or 1, which would not be the same arithmetic.
    const float gain = polyGain.next() * getParameterValue (ParameterIndex::volume) * 0.5f;
    if (mainQuiet)
        buffer.clear();
    else
    {
        for (int ch = 0; ch < buffer.getNumChannels(); ++ch)
        {
            auto* data = buffer.getWritePointer (ch);
            for (int i = 0; i < n; ++i)
                data[i] *= gain;
        }
        for (int ch = 0; ch < numChannels; ++ch)
        {
            auto* data = buffer.getWritePointer (ch);
            for (int i = 0; i < n; ++i)
                data[i] = softClip (data[i]);
        }
    }

    blockDelay.setupBlock ({ getParameterValue (ParameterIndex::time), getParameterValue (ParameterIndex::sync),
                             getParameterValue (ParameterIndex::fmit), getParameterValue (ParameterIndex::squeezeit),
                             getParameterValue (ParameterIndex::fdbk), getParameterValue (ParameterIndex::envms),
                             getParameterValue (ParameterIndex::revmix), getParameterValue (ParameterIndex::rev),
                             hostBpm, (float) currentSampleRate });
    tilt.setupBlock (getParameterValue (ParameterIndex::tilt), currentSampleRate);

    if (! mainQuiet)
    {
        for (int ch = 0; ch < numChannels; ++ch)
        {
            auto* data = buffer.getWritePointer (ch);
            auto& dc = dcBlockerMain[(size_t) ch];
            for (int i = 0; i < n; ++i)
                data[i] = dc.process (data[i]);
        }
    }

    const float octaveRatio = getParameterValue (ParameterIndex::up) > 0.0f ? 2.0f : 0.5f;

    wetBuffer.setSize (buffer.getNumChannels(), n, false, false, true);
    for (int ch = 0; ch < buffer.getNumChannels(); ++ch)
        wetBuffer.copyFrom (ch, 0, buffer, ch, 0, n);

    auto updateSwitch = [] (bool* flag, const bool* value) { *flag = *value; };
    const std::function<void (bool*, const bool*)> setSwitch = updateSwitch;
    const bool switches[] = { getParameterValue (ParameterIndex::bp1) >= 0.5f, getParameterValue (ParameterIndex::bp2) >= 0.5f,
                              getParameterValue (ParameterIndex::bp3) >= 0.5f, getParameterValue (ParameterIndex::pre) >= 0.5f };
    bool* flags[] = { &octaverOn, &delayOn, &flangerOn, &flangerPre };
    for (int i = 0; i < 4; ++i)
        if (*flags[i] != switches[i])
            setSwitch (flags[i], &switches[i]);

    if (octaverOn)
        octaver.process (wetBuffer, n, getParameterValue (ParameterIndex::octave), octaveRatio);
    if (flangerOn && flangerPre)
        runFlanger (wetBuffer, n);
    blockDelay.process (wetBuffer, n, delayOn, getParameterValue (ParameterIndex::revmix), tilt);
    if (flangerOn && ! flangerPre)
        runFlanger (wetBuffer, n);

    const float m = getParameterValue (ParameterIndex::drywet);
    // Zeros on both sides mix to zeros.
    const bool wetSilent = mainQuiet && isSilent (wetBuffer.getReadPointer (0), n) && isSilent (wetBuffer.getReadPointer (1), n);
    if (! wetSilent)
    {
        for (int ch = 0; ch < buffer.getNumChannels(); ++ch)
        {
            auto* data = buffer.getWritePointer (ch);
            for (int i = 0; i < n; ++i)
                data[i] *= 1.0f - m;
        }
        for (int ch = 0; ch < numChannels; ++ch)
        {
            auto* data = buffer.getWritePointer (ch);
            const auto* wet = wetBuffer.getReadPointer (ch);
            for (int i = 0; i < n; ++i)
                data[i] += m * wet[i];
        }
    }

    reverbStage.process (buffer, n, getParameterValue (ParameterIndex::reverb), dcBlockerReverb[0], dcBlockerReverb[1]);
}

juce::AudioProcessorEditor* KestruneAudioProcessor::createEditor()
{
    return new PelvaneAudioProcessorEditor (*this);
}

void KestruneAudioProcessor::setCurrentProgram (int)
{
    updateHostDisplay();
}

void KestruneAudioProcessor::getStateInformation (juce::MemoryBlock& destData)
{
    const auto state = parameters.copyState();
    if (const auto xml = state.createXml())
        copyXmlToBinary (*xml, destData);
}

void KestruneAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    tilt.invalidate();
    resetBlockDelay();

    const auto xml = velkaro::XmlText::parseStateBlock (data, sizeInBytes);
    if (xml == nullptr)
        return;

    auto newState = juce::ValueTree::fromXml (*xml);
    if (! newState.isValid())
        return;
    velkaro::PresetManager::replaceNonFiniteValues (parameters, newState);
    parameters.replaceState (newState);

    // A project recall is never taken for a library preset, even where it started as one.
    presetManager.clearSelection();
    selection.removeProperty ("name", nullptr);
    presetManager.detachFromPreset (parameters.state);
}

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new KestruneAudioProcessor();
}
