// SPDX-License-Identifier: AGPL-3.0-or-later
// The renderer's work: inputs are all checked before the plug-in loads, outputs go through
// temporary files that replace their targets only when complete.
#include "OfflineRender.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include "HostEnvironment.h"
#include "PluginHost.h"
#include "RenderSummary.h"
#include "core/XmlText.h"

namespace
{
bool checkWritable (const juce::File& file, const juce::String& what, juce::String& error)
{
    const auto folder = file.getParentDirectory();
    if (file.isDirectory() || ! folder.isDirectory() || ! folder.hasWriteAccess()
        || (file.existsAsFile() && ! file.hasWriteAccess()))
    {
        error = "cannot write " + what + " " + file.getFullPathName();
        return false;
    }
    return true;
}

bool writeFileAtomically (const juce::File& target, const juce::MemoryBlock& data)
{
    juce::TemporaryFile temporary (target);
    {
        juce::FileOutputStream stream (temporary.getFile());
        if (! stream.openedOk() || ! stream.write (data.getData(), data.getSize()))
            return false;
        stream.flush();
        if (stream.getStatus().failed())
            return false;
    }
    return temporary.overwriteTargetFileWithTemporary();
}
} // namespace

OfflineRender::OfflineRender (const RenderOptions& renderOptions) : options (renderOptions) {}

bool OfflineRender::readInputs (juce::String& error)
{
    if (options.midiFile != juce::File())
    {
        juce::FileInputStream stream (options.midiFile);
        juce::MidiFile file;
        if (! stream.openedOk() || ! file.readFrom (stream))
        {
            error = "cannot read MIDI file " + options.midiFile.getFullPathName();
            return false;
        }
        file.convertTimestampTicksToSeconds();
        for (int track = 0; track < file.getNumTracks(); ++track)
            midiSequence.addSequence (*file.getTrack (track), 0.0);
    }

    if (options.stateIn != juce::File())
    {
        if (! options.stateIn.existsAsFile() || ! options.stateIn.loadFileAsData (initialState) || initialState.isEmpty())
        {
            error = "cannot read state file " + options.stateIn.getFullPathName();
            return false;
        }
        hasInitialState = true;
    }

    if (options.preset != juce::File())
    {
        if (! options.preset.existsAsFile())
        {
            error = "cannot read preset file " + options.preset.getFullPathName();
            return false;
        }
        juce::String reason;
        const auto xml = velkaro::XmlText::parse (options.preset, &reason);
        if (xml == nullptr)
        {
            error = "cannot parse preset file " + options.preset.getFullPathName()
                    + (reason.isNotEmpty() ? ": " + reason : juce::String());
            return false;
        }
        if (! xml->hasTagName ("ondrivel"))
        {
            error = "preset file " + options.preset.getFullPathName() + " is not an ondrivel preset (its root is <"
                    + xml->getTagName() + ">)";
            return false;
        }
        // A preset is the plug-in's state tree with its program data beside the parameters, so it
        // loads as a state block of the form the plug-in itself writes.
        juce::AudioProcessor::copyXmlToBinary (*xml, initialState);
        hasInitialState = true;
    }

    if (! checkWritable (options.out, "output file", error))
        return false;
    if (options.stateOut != juce::File() && ! checkWritable (options.stateOut, "state file", error))
        return false;
    return true;
}

bool OfflineRender::run (juce::String& summaryText, juce::String& error)
{
    if (! readInputs (error))
        return false;

    HostEnvironment environment;
    auto host = PluginHost::load (options.plugin, (double) options.sampleRate, options.blockSize, error);
    if (host == nullptr)
        return false;

    if (hasInitialState)
        host->setState (initialState.getData(), initialState.getSize());

    for (const auto& setting : options.settings)
    {
        auto* parameter = host->findParameter (setting.id);
        if (parameter == nullptr)
        {
            error = "the plug-in " + options.plugin + " has no parameter '" + setting.id + "'";
            return false;
        }
        PluginHost::setParameterValue (*parameter, setting.value);
    }

    host->setTempo (options.bpm);
    for (const auto& note : options.notes)
        host->scheduleNote (note.noteNumber, note.velocity, options.sampleAt (note.startSeconds),
                            options.sampleAt (note.startSeconds + note.durationSeconds));
    for (const auto* event : midiSequence)
        if (! event->message.isMetaEvent() && ! event->message.isSysEx())
            host->scheduleMidi (options.sampleAt (event->message.getTimeStamp()), event->message);

    juce::TemporaryFile temporary (options.out);
    RenderSummary summary (host->getNumChannels(), (double) options.sampleRate);
    {
        auto stream = std::make_unique<juce::FileOutputStream> (temporary.getFile());
        if (! stream->openedOk())
        {
            error = "cannot write output file " + options.out.getFullPathName();
            return false;
        }
        juce::WavAudioFormat wav;
        std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (stream.get(), (double) options.sampleRate, (unsigned int) host->getNumChannels(), 32, {}, 0));
        if (writer == nullptr)
        {
            error = "cannot write output file " + options.out.getFullPathName();
            return false;
        }
        stream.release(); // the writer owns it now

        const auto total = options.totalFrames();
        for (juce::int64 done = 0; done < total;)
        {
            const int n = (int) juce::jmin ((juce::int64) options.blockSize, total - done);
            const auto& block = host->renderNext (n);
            summary.add (block);
            if (! writer->writeFromAudioSampleBuffer (block, 0, n))
            {
                error = "cannot write output file " + options.out.getFullPathName() + " (disk full?)";
                return false;
            }
            done += n;
        }
        if (! writer->flush())
        {
            error = "cannot write output file " + options.out.getFullPathName();
            return false;
        }
    }
    if (! temporary.overwriteTargetFileWithTemporary())
    {
        error = "cannot write output file " + options.out.getFullPathName();
        return false;
    }

    if (options.stateOut != juce::File())
    {
        const auto state = host->getState();
        if (state.isEmpty() || ! writeFileAtomically (options.stateOut, state))
        {
            options.out.deleteFile();
            error = "cannot write state file " + options.stateOut.getFullPathName();
            return false;
        }
    }

    summaryText = options.json ? summary.toJson (options.out) : summary.toText (options.out);
    return true;
}
