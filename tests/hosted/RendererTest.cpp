// SPDX-License-Identifier: AGPL-3.0-or-later
// ondrivel-render as users and scripts call it: bad input ends with status 2, one line on stderr and
// no output file; notes land on the samples the command line names; state and presets load; two
// runs of one command give the same file.
#include <sys/wait.h>

#include <cstdlib>

#include <juce_audio_formats/juce_audio_formats.h>

#include "hosted/HostedPlugin.h"

namespace
{
struct Result { int status = -1; juce::String out, err; };

juce::String quoted (const juce::String& arg) { return "'" + arg.replace ("'", "'\\''") + "'"; }

class RendererTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        folder = juce::File::getSpecialLocation (juce::File::tempDirectory).getNonexistentChildFile ("ondrivel-render-test", "", false);
        ASSERT_TRUE (folder.createDirectory());
    }
    void TearDown() override { folder.deleteRecursively(); }

    Result run (const juce::StringArray& args, const juce::String& environment = {})
    {
        const auto outFile = folder.getChildFile ("stdout.txt"), errFile = folder.getChildFile ("stderr.txt");
        juce::String command = environment + " " + quoted (ONDRIVEL_RENDER_EXE);
        for (const auto& arg : args)
            command << " " << quoted (arg);
        command << " >" << quoted (outFile.getFullPathName()) << " 2>" << quoted (errFile.getFullPathName());

        // Relative paths are resolved against the working directory the renderer starts in.
        const auto previous = juce::File::getCurrentWorkingDirectory();
        folder.setAsCurrentWorkingDirectory();
        const int raw = std::system (command.toRawUTF8());
        previous.setAsCurrentWorkingDirectory();

        const Result result { WIFEXITED (raw) ? WEXITSTATUS (raw) : -1, outFile.loadFileAsString(), errFile.loadFileAsString() };
        outFile.deleteFile();
        errFile.deleteFile();
        return result;
    }

    // The samples of a rendered file, one array per channel.
    juce::AudioBuffer<float> read (const juce::File& file)
    {
        juce::WavAudioFormat wav;
        std::unique_ptr<juce::AudioFormatReader> reader (wav.createReaderFor (file.createInputStream().release(), true));
        if (reader == nullptr)
            return {};
        juce::AudioBuffer<float> samples ((int) reader->numChannels, (int) reader->lengthInSamples);
        reader->read (&samples, 0, (int) reader->lengthInSamples, 0, true, true);
        return samples;
    }

    juce::File folder;
};
} // namespace

TEST_F (RendererTest, BadInputExitsWithStatusTwoAndLeavesNoFile)
{
    folder.getChildFile ("garbage.mid").replaceWithText ("this is not a MIDI file");
    folder.getChildFile ("broken.xml").replaceWithText ("<ondrivel><PARAM id=\"volume\" value=");
    folder.getChildFile ("other.xml").replaceWithText ("<html/>");
    folder.getChildFile ("fake.vst3").createDirectory();

    // Each case's arguments follow "--out out.wav" unless they name an output of their own.
    struct Case { const char* name; juce::StringArray args; const char* mentions; };
    const Case cases[] = {
        { "missing plug-in", { "--plugin", "nowhere/ondrivel.vst3" }, "nowhere" },
        { "unloadable plug-in", { "--plugin", "fake.vst3" }, "fake.vst3" },
        { "unknown parameter", { "--set", "loudness=1" }, "octave, up, bp1" },
        { "value out of range", { "--set", "octave=1.5" }, "octave" },
        { "setting without value", { "--set", "volume" }, "volume" },
        { "note with three fields", { "--notes", "60:100:0" }, "60:100:0" },
        { "velocity zero", { "--notes", "60:0:0:1" }, "velocity" },
        { "note number 128", { "--notes", "128:100:0:1" }, "note number" },
        { "missing MIDI file", { "--midi", "absent.mid" }, "absent.mid" },
        { "unreadable MIDI file", { "--midi", "garbage.mid" }, "garbage.mid" },
        { "unparsable preset", { "--preset", "broken.xml" }, "broken.xml" },
        { "preset of another kind", { "--preset", "other.xml" }, "other.xml" },
        { "missing state file", { "--state-in", "absent.state" }, "absent.state" },
        { "zero seconds", { "--seconds", "0" }, "--seconds" },
        { "rate too low", { "--rate", "8000" }, "--rate" },
        { "block zero", { "--block", "0" }, "--block" },
        { "unknown option", { "--loud" }, "--loud" },
        { "option without value", { "--seconds" }, "--seconds" },
        { "output in a missing folder", { "--out", "no/such/folder/out.wav" }, "cannot write" },
        { "output is a folder", { "--out", "." }, "cannot write" },
    };
    for (const auto& c : cases)
    {
        auto args = c.args.contains ("--out") ? juce::StringArray() : juce::StringArray { "--out", "out.wav" };
        args.addArray (c.args);
        const auto result = run (args);
        EXPECT_EQ (result.status, 2) << c.name << ": " << result.err;
        EXPECT_TRUE (result.err.startsWith ("ondrivel-render: ")) << c.name << ": " << result.err;
        EXPECT_TRUE (result.err.contains (c.mentions)) << c.name << ": " << result.err;
        EXPECT_EQ (result.err.trimEnd().indexOfChar ('\n'), -1) << c.name << ": " << result.err;
        EXPECT_EQ (folder.findChildFiles (juce::File::findFiles, true, "*.wav*").size(), 0) << c.name;
    }
    EXPECT_EQ (run ({ "--seconds", "1" }).status, 2) << "no output named";
}

TEST_F (RendererTest, RendersTheRequestedLengthWithEachNoteOnItsSampleAndReportsIt)
{
    juce::MidiMessageSequence track;
    track.addEvent (juce::MidiMessage::tempoMetaEvent (500000), 0); // 120 BPM: 960 ticks per second
    track.addEvent (juce::MidiMessage::noteOn (1, 64, (juce::uint8) 110), 480);
    track.addEvent (juce::MidiMessage::noteOff (1, 64), 960);
    juce::MidiFile midiFile;
    midiFile.setTicksPerQuarterNote (480);
    midiFile.addTrack (track);
    ASSERT_TRUE (midiFile.writeTo (*folder.getChildFile ("phrase.mid").createOutputStream()));

    // Silence before `silentUntil`, sound in the `soundLength` samples from `soundFrom`.
    struct Case { const char* name; juce::StringArray args; const char* environment; int frames, silentUntil, soundFrom, soundLength; };
    const Case cases[] = {
        // 0.1 s at 44100 Hz is sample 4410, inside a block of 100, so a lost offset shows.
        { "note inside a block", { "--seconds", "0.25", "--rate", "44100", "--block", "100", "--notes", "60:127:0.1:0.1" }, "", 11025, 4410, 4410, 32 },
        // The first note ends on the sample where the second starts: the release must come first, or the
        // new note would be cut off at once. Effects off, so that no echo or tail hides a cut.
        { "repeated note", { "--seconds", "1.2", "--block", "7", "--set", "drywet=0", "reverb=0", "--notes", "60:100:0:0.5,60:100:0.5:0.6" }, "", 57600, 0, 43200, 4800 },
        { "standard MIDI file, a note at the second quarter", { "--seconds", "1", "--midi", "phrase.mid" }, "", 48000, 24000, 24000, 4800 },
        // The plug-in then wants to show a message box; a headless render must neither block nor crash.
        { "no data folder", { "--seconds", "0.1", "--notes", "60:100:0:0.05" }, "HOME=/dev/null", 4800, 0, 0, 4800 },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.name);
        auto args = c.args;
        args.addArray ({ "--out", "out.wav", "--json" });
        const auto result = run (args, c.environment);
        ASSERT_EQ (result.status, 0) << result.err;
        const auto summary = juce::JSON::parse (result.out);
        EXPECT_EQ ((int) summary["frames"], c.frames);
        EXPECT_EQ ((int) summary["nonFinite"], 0);
        EXPECT_EQ (summary["file"].toString(), folder.getChildFile ("out.wav").getFullPathName());

        const auto samples = read (folder.getChildFile ("out.wav"));
        ASSERT_EQ (samples.getNumChannels(), 2);
        ASSERT_EQ (samples.getNumSamples(), c.frames);
        EXPECT_FLOAT_EQ (samples.getMagnitude (0, 0, c.frames), (float) (double) summary["peak"][0]);
        EXPECT_EQ (samples.getMagnitude (0, c.silentUntil), 0.0f) << "sound before the note";
        EXPECT_GT (samples.getMagnitude (c.soundFrom, c.soundLength), 0.0f) << "the note sounds late or was cut off";
        folder.getChildFile ("out.wav").deleteFile();
    }
}

TEST_F (RendererTest, TwoRunsOfOneCommandWriteTheSameFileWithTheReverbOn)
{
    // Each run is a fresh process, in which the host and the module code seed the C library's
    // generator with addresses; the reverb's tail must not follow them.
    for (const auto* name : { "first.wav", "second.wav" })
    {
        const auto result = run ({ "--out", name, "--seconds", "1.5", "--notes", "48:100:0:0.3,60:90:0.2:0.3", "--set", "reverb=1" });
        ASSERT_EQ (result.status, 0) << result.err;
    }
    juce::MemoryBlock first, second;
    ASSERT_TRUE (folder.getChildFile ("first.wav").loadFileAsData (first));
    ASSERT_TRUE (folder.getChildFile ("second.wav").loadFileAsData (second));
    EXPECT_GT (read (folder.getChildFile ("first.wav")).getMagnitude (0, 48000, 24000), 0.0f) << "no tail to compare";
    EXPECT_TRUE (first == second);
}

TEST_F (RendererTest, StateAndPresetFilesCarryTheirSettings)
{
    auto valueIn = [this] (const char* stateFile, const char* id)
    {
        juce::MemoryBlock block;
        folder.getChildFile (stateFile).loadFileAsData (block);
        const auto xml = juce::AudioProcessor::getXmlFromBinary (block.getData(), (int) block.getSize());
        return xml != nullptr ? hosted::stateValue (*xml, id).getDoubleValue() : -1.0;
    };
    ASSERT_EQ (run ({ "--out", "a.wav", "--seconds", "0.1", "--set", "time=500", "volume=0.25", "--set", "pitch=12", "--state-out", "saved.state" }).status, 0);
    for (const auto& [id, value] : { std::pair { "time", 500.0 }, { "volume", 0.25 }, { "pitch", 12.0 } })
        EXPECT_EQ (valueIn ("saved.state", id), value) << id;
    ASSERT_EQ (run ({ "--out", "b.wav", "--seconds", "0.1", "--state-in", "saved.state", "--state-out", "again.state" }).status, 0);
    EXPECT_EQ (folder.getChildFile ("again.state").loadFileAsString(), folder.getChildFile ("saved.state").loadFileAsString());

    folder.getChildFile ("dark.xml").replaceWithText ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                      "<ondrivel><PARAM id=\"time\" value=\"700\"/><PARAM id=\"tilt\" value=\"-0.5\"/>"
                                                      "<PROGRAM name=\"dark\" type=\"pad\" author=\"test\"/><NOTES text=\"\"/></ondrivel>");
    ASSERT_EQ (run ({ "--out", "p.wav", "--seconds", "0.1", "--preset", "dark.xml", "--state-out", "p.state" }).status, 0);
    EXPECT_EQ (valueIn ("p.state", "time"), 700.0);
}
