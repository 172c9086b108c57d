// SPDX-License-Identifier: AGPL-3.0-or-later
// Offline VST3 hosting on the message thread.
#include "PluginHost.h"

#include <algorithm>
#include <cstdio>

#include <juce_audio_processors/format_types/VST3_SDK/pluginterfaces/vst/ivstcomponent.h>
#include <juce_audio_processors/format_types/VST3_SDK/pluginterfaces/vst/ivstunits.h>

namespace
{
// The VST3 wrapper keeps the plug-in's state as a "VST3PluginState" tree holding the component's
// stream as base64; the component stream is the plug-in's own block plus a trailer of the wrapper.
const char* const hostedStateTag = "VST3PluginState";
const char* const componentStateTag = "IComponent";

// The plug-in's block starts with the magic of copyXmlToBinary and its text length; anything past
// that length belongs to the wrapper.
juce::MemoryBlock withoutWrapperTrailer (const juce::MemoryBlock& stream)
{
    constexpr juce::uint32 magic = 0x21324356;
    if (stream.getSize() < 9 || juce::ByteOrder::littleEndianInt (stream.getData()) != magic)
        return stream;
    const auto textLength = (size_t) juce::ByteOrder::littleEndianInt (juce::addBytesToPointer (stream.getData(), 4));
    const auto blockSize = textLength + 9;
    if (blockSize > stream.getSize())
        return stream;
    return { stream.getData(), blockSize };
}
// The LV2 wrapper saves the plug-in's block as base64 text under its "StateString" key.
juce::String lv2StateString (const juce::String& turtle)
{
    const auto afterKey = turtle.fromFirstOccurrenceOf (":StateString>", false, false);
    return afterKey.fromFirstOccurrenceOf ("\"", false, false).upToFirstOccurrenceOf ("\"", false, false);
}
} // namespace

std::unique_ptr<PluginHost> PluginHost::load (const juce::File& bundle, double sampleRate, int blockSize,
                                              juce::String& error)
{
    return load (bundle.getFullPathName(), sampleRate, blockSize, error);
}

bool PluginHost::isLv2Uri (const juce::String& text)
{
    return text.startsWith ("http://") || text.startsWith ("https://") || text.startsWith ("urn:");
}

std::unique_ptr<PluginHost> PluginHost::load (const juce::String& pathOrUri, double sampleRate, int blockSize,
                                              juce::String& error)
{
    const bool byUri = isLv2Uri (pathOrUri);
    if (! byUri && ! juce::File (pathOrUri).exists())
    {
        error = "no plug-in at " + pathOrUri;
        return nullptr;
    }

    // An LV2 plug-in is a bundle folder ending in .lv2 or a URI; everything else is taken for VST3.
    std::unique_ptr<juce::AudioPluginFormat> format;
    if (byUri || pathOrUri.trimCharactersAtEnd ("/").endsWithIgnoreCase (".lv2"))
        format = std::make_unique<juce::LV2PluginFormat>();
    else
        format = std::make_unique<juce::VST3PluginFormat>();

    juce::OwnedArray<juce::PluginDescription> types;
    format->findAllTypesForFile (types, pathOrUri);
    if (types.isEmpty())
    {
        error = "cannot load plug-in " + pathOrUri + ": not a loadable " + format->getName()
                + (byUri ? " plug-in (is its bundle in ~/.lv2 or /usr/lib/lv2?)" : " bundle");
        // LV2 hosts know a plug-in by its URI and take the first bundle that declares it.
        if (! byUri && format->getName() == "LV2" && juce::File (pathOrUri).getChildFile ("manifest.ttl").existsAsFile())
            error << " (if a bundle with the same plug-in URI is installed in ~/.lv2 or /usr/lib/lv2, "
                     "the host takes that one: remove it, or name the plug-in by its URI)";
        return nullptr;
    }

    juce::String message;
    auto instance = format->createInstanceFromDescription (*types[0], sampleRate, blockSize, message);
    if (instance == nullptr)
    {
        error = "cannot load plug-in " + pathOrUri + ": "
                + (message.isNotEmpty() ? message : juce::String ("the plug-in refused to start"));
        return nullptr;
    }

    std::unique_ptr<PluginHost> host (new PluginHost (std::move (instance), *types[0]));
    host->prepare (sampleRate, blockSize);
    return host;
}

PluginHost::PluginHost (std::unique_ptr<juce::AudioPluginInstance> pluginInstance,
                        const juce::PluginDescription& pluginDescription)
    : instance (std::move (pluginInstance)), description (pluginDescription)
{
    const auto* bypass = instance->getBypassParameter();
    for (auto* parameter : instance->getParameters())
        if (parameter != bypass && parameter->isAutomatable())
            parameters.add (parameter);

    instance->setPlayHead (&playHead);
}

PluginHost::~PluginHost()
{
    instance->releaseResources();
    instance->setPlayHead (nullptr);
}

void PluginHost::prepare (double newSampleRate, int newBlockSize)
{
    sampleRate = newSampleRate;
    blockSize = juce::jmax (1, newBlockSize);

    instance->releaseResources();
    instance->setRateAndBufferSizeDetails (sampleRate, blockSize);
    instance->prepareToPlay (sampleRate, blockSize);

    const int channels = juce::jmax (instance->getTotalNumInputChannels(), instance->getTotalNumOutputChannels());
    buffer.setSize (channels, blockSize);
    midi.ensureSize (4096);
    playHead.setSampleRate (sampleRate);

    events.clear();
    nextEvent = 0;
    eventsSorted = true;
    position = 0;
}

void PluginHost::setTempo (double bpm)
{
    playHead.setTempo (bpm);
}

juce::AudioProcessorParameter* PluginHost::findParameter (const juce::String& pluginParameterId) const
{
    // The framework's VST3 wrapper derives the VST3 id from the plug-in's id by a hash, masked to
    // 31 bits by default; accept both forms.
    const auto masked = juce::String (juce::VST3ClientExtensions::convertJuceParameterId (pluginParameterId, true));
    const auto full = juce::String (juce::VST3ClientExtensions::convertJuceParameterId (pluginParameterId, false));

    // The LV2 host names a parameter by its URI, the plug-in's URI and ":" and the plug-in's id.
    for (auto* parameter : parameters)
        if (auto* hosted = dynamic_cast<juce::HostedAudioProcessorParameter*> (parameter))
            if (const auto id = hosted->getParameterID();
                id == masked || id == full || (isLv2() && id.fromLastOccurrenceOf (":", false, false) == pluginParameterId))
                return parameter;
    return nullptr;
}

void PluginHost::setParameterValue (juce::AudioProcessorParameter& parameter, double value)
{
    // A VST3 host only sees normalised values; the plug-in's own text-to-value conversion is the
    // one place that knows the range and its skew. Nine significant digits carry a float exactly.
    char text[40];
    std::snprintf (text, sizeof (text), "%.9g", value);
    parameter.setValue (parameter.getValueForText (text));
}

void PluginHost::scheduleMidi (juce::int64 samplePosition, const juce::MidiMessage& message)
{
    const bool isRelease = message.isNoteOff (true);
    events.push_back ({ samplePosition, isRelease ? 0 : 1, message });
    eventsSorted = false;
}

void PluginHost::scheduleNote (int noteNumber, int velocity, juce::int64 onSample, juce::int64 offSample)
{
    scheduleMidi (onSample, juce::MidiMessage::noteOn (1, noteNumber, (juce::uint8) velocity));
    scheduleMidi (offSample, juce::MidiMessage::noteOff (1, noteNumber));
}

void PluginHost::collectMidi (int numFrames)
{
    if (! eventsSorted)
    {
        std::stable_sort (events.begin() + (std::ptrdiff_t) nextEvent, events.end(),
                          [] (const ScheduledEvent& a, const ScheduledEvent& b)
                          { return a.sample != b.sample ? a.sample < b.sample : a.rank < b.rank; });
        eventsSorted = true;
    }

    midi.clear();
    const auto end = position + numFrames;
    while (nextEvent < events.size() && events[nextEvent].sample < end)
    {
        const auto& event = events[nextEvent++];
        // Events scheduled before the current position are late; they play at the block's start.
        midi.addEvent (event.message, (int) juce::jmax ((juce::int64) 0, event.sample - position));
    }
}

const juce::AudioBuffer<float>& PluginHost::renderNext (int numFrames)
{
    numFrames = juce::jlimit (1, blockSize, numFrames);
    collectMidi (numFrames);

    buffer.setSize (buffer.getNumChannels(), numFrames, false, false, true);
    buffer.clear();
    playHead.setTimeInSamples (position);
    instance->processBlock (buffer, midi);
    position += numFrames;
    return buffer;
}

juce::StringArray PluginHost::getProgramNames()
{
    struct ComponentFinder final : juce::ExtensionsVisitor
    {
        void visitVST3Client (const VST3Client& client) override { component = client.getIComponentPtr(); }
        Steinberg::Vst::IComponent* component = nullptr;
    };
    ComponentFinder finder;
    instance->getExtensions (finder);
    if (finder.component == nullptr)
        return {};

    Steinberg::Vst::IUnitInfo* unitInfo = nullptr;
    if (finder.component->queryInterface (Steinberg::Vst::IUnitInfo::iid, (void**) &unitInfo) != Steinberg::kResultOk
        || unitInfo == nullptr)
        return {};

    juce::StringArray names;
    for (Steinberg::int32 list = 0; list < unitInfo->getProgramListCount(); ++list)
    {
        Steinberg::Vst::ProgramListInfo info {};
        if (unitInfo->getProgramListInfo (list, info) != Steinberg::kResultOk)
            continue;
        for (Steinberg::int32 program = 0; program < info.programCount; ++program)
        {
            Steinberg::Vst::String128 name {};
            if (unitInfo->getProgramName (info.id, program, name) == Steinberg::kResultOk)
                names.add (juce::String (juce::CharPointer_UTF16 (reinterpret_cast<const juce::CharPointer_UTF16::CharType*> (name))));
        }
    }
    unitInfo->release();
    return names;
}

juce::MemoryBlock PluginHost::getState()
{
    juce::MemoryBlock hostedState;
    instance->getStateInformation (hostedState);

    if (isLv2())
    {
        juce::MemoryBlock block;
        if (! block.fromBase64Encoding (lv2StateString (hostedState.toString())))
            return {};
        return block;
    }

    const auto xml = juce::AudioProcessor::getXmlFromBinary (hostedState.getData(), (int) hostedState.getSize());
    if (xml == nullptr || ! xml->hasTagName (hostedStateTag))
        return {};
    const auto* component = xml->getChildByName (componentStateTag);
    if (component == nullptr)
        return {};

    juce::MemoryBlock stream;
    if (! stream.fromBase64Encoding (component->getAllSubText()))
        return {};
    return withoutWrapperTrailer (stream);
}

void PluginHost::setState (const void* data, size_t size)
{
    if (isLv2())
    {
        // The LV2 host takes a whole saved state in Turtle: the current one, with the plug-in's block
        // put in place of its own.
        juce::MemoryBlock hostedState;
        instance->getStateInformation (hostedState);
        const auto turtle = hostedState.toString();
        const auto old = lv2StateString (turtle);
        if (old.isEmpty())
            return;
        const auto replaced = turtle.replace ("\"" + old + "\"", "\"" + juce::MemoryBlock (data, size).toBase64Encoding() + "\"");
        instance->setStateInformation (replaced.toRawUTF8(), (int) replaced.getNumBytesAsUTF8());
        return;
    }

    juce::XmlElement hostedState (hostedStateTag);
    hostedState.createNewChildElement (componentStateTag)
        ->addTextElement (juce::MemoryBlock (data, size).toBase64Encoding());

    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (hostedState, block);
    instance->setStateInformation (block.getData(), (int) block.getSize());
}
