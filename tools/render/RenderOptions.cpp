// SPDX-License-Identifier: AGPL-3.0-or-later
// Command-line parsing for ondrivel-render; every bad argument is named in a one-line error.
#include "RenderOptions.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "PluginHost.h"
#include "core/ParameterTable.h"

namespace
{
bool parseNumber (const juce::String& text, double& value)
{
    const auto utf8 = text.trim().toStdString();
    if (utf8.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtod (utf8.c_str(), &end);
    return errno == 0 && end != nullptr && *end == '\0' && std::isfinite (value);
}

bool parseInteger (const juce::String& text, int& value)
{
    const auto utf8 = text.trim().toStdString();
    if (utf8.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol (utf8.c_str(), &end, 10);
    if (errno != 0 || end == nullptr || *end != '\0' || parsed < INT32_MIN || parsed > INT32_MAX)
        return false;
    value = (int) parsed;
    return true;
}

const ParameterInfo* findRow (const juce::String& id)
{
    for (const auto& row : parameterTable)
        if (id == row.id)
            return &row;
    return nullptr;
}

juce::String validIds()
{
    juce::StringArray ids;
    for (const auto& row : parameterTable)
        ids.add (row.id);
    return ids.joinIntoString (", ");
}

bool parseNote (const juce::String& noteText, RenderOptions::Note& note, juce::String& error)
{
    error = "malformed note '" + noteText + "' (expected NOTE:VEL:START:DUR, for example 60:100:0:1.5)";
    const auto fields = juce::StringArray::fromTokens (noteText, ":", {});
    if (fields.size() != 4)
        return false;
    if (! parseInteger (fields[0], note.noteNumber) || note.noteNumber < 0 || note.noteNumber > 127)
    {
        error = "malformed note '" + noteText + "': the note number must be 0 to 127";
        return false;
    }
    if (! parseInteger (fields[1], note.velocity) || note.velocity < 1 || note.velocity > 127)
    {
        error = "malformed note '" + noteText + "': the velocity must be 1 to 127";
        return false;
    }
    if (! parseNumber (fields[2], note.startSeconds) || note.startSeconds < 0.0)
    {
        error = "malformed note '" + noteText + "': the start must be a time in seconds, 0 or later";
        return false;
    }
    if (! parseNumber (fields[3], note.durationSeconds) || note.durationSeconds <= 0.0)
    {
        error = "malformed note '" + noteText + "': the duration must be a time in seconds above 0";
        return false;
    }
    return true;
}

bool parseSetting (const juce::String& text, RenderOptions::Setting& setting, juce::String& error)
{
    if (! text.containsChar ('='))
    {
        error = "malformed setting '" + text + "' (expected ID=VALUE)";
        return false;
    }
    setting.id = text.upToFirstOccurrenceOf ("=", false, false).trim();
    const auto valueText = text.fromFirstOccurrenceOf ("=", false, false);
    const auto* row = findRow (setting.id);
    if (row == nullptr)
    {
        error = "unknown parameter id '" + setting.id + "' (valid ids: " + validIds() + ")";
        return false;
    }
    if (! parseNumber (valueText, setting.value))
    {
        error = "malformed value '" + valueText + "' for parameter '" + setting.id + "'";
        return false;
    }
    if (setting.value < row->min || setting.value > row->max)
    {
        error = "value " + valueText.trim() + " for parameter '" + setting.id + "' is outside its range "
                + juce::String (row->min) + " to " + juce::String (row->max);
        return false;
    }
    return true;
}
} // namespace

juce::int64 RenderOptions::sampleAt (double secondsFromStart) const
{
    return (juce::int64) std::floor (secondsFromStart * (double) sampleRate + 0.5);
}

juce::int64 RenderOptions::totalFrames() const
{
    return sampleAt (seconds);
}

bool RenderOptions::parse (const juce::StringArray& args, const juce::File& workingDirectory, RenderOptions& options,
                           juce::String& error)
{
    bool hasPlugin = false;
    bool hasNotes = false;

    for (int i = 0; i < args.size(); ++i)
    {
        const auto& option = args[i];

        if (option == "--help" || option == "-h")
        {
            options.helpRequested = true;
            return true;
        }
        if (option == "--json")
        {
            options.json = true;
            continue;
        }

        static const juce::StringArray withValue { "--plugin", "--out", "--seconds", "--rate", "--block", "--notes",
                                                   "--midi", "--set", "--bpm", "--state-in", "--state-out", "--preset" };
        if (! withValue.contains (option))
        {
            error = "unknown option '" + option + "' (try --help)";
            return false;
        }
        if (i + 1 >= args.size())
        {
            error = option + " needs a value";
            return false;
        }
        const auto value = args[++i];
        auto path = [&] { return workingDirectory.getChildFile (value); };

        if (option == "--plugin")
        {
            options.plugin = PluginHost::isLv2Uri (value) ? value : path().getFullPathName();
            hasPlugin = true;
        }
        else if (option == "--out")
            options.out = path();
        else if (option == "--midi")
            options.midiFile = path();
        else if (option == "--state-in")
            options.stateIn = path();
        else if (option == "--state-out")
            options.stateOut = path();
        else if (option == "--preset")
            options.preset = path();
        else if (option == "--seconds")
        {
            if (! parseNumber (value, options.seconds) || options.seconds <= 0.0 || options.seconds > 3600.0)
            {
                error = "--seconds must be a length above 0 and at most 3600, not '" + value + "'";
                return false;
            }
        }
        else if (option == "--rate")
        {
            if (! parseInteger (value, options.sampleRate) || options.sampleRate < 22050 || options.sampleRate > 192000)
            {
                error = "--rate must be a whole number of Hz from 22050 to 192000, not '" + value + "'";
                return false;
            }
        }
        else if (option == "--block")
        {
            if (! parseInteger (value, options.blockSize) || options.blockSize < 1 || options.blockSize > 65536)
            {
                error = "--block must be a whole number of samples from 1 to 65536, not '" + value + "'";
                return false;
            }
        }
        else if (option == "--bpm")
        {
            if (! parseNumber (value, options.bpm) || options.bpm <= 0.0 || options.bpm > 999.0)
            {
                error = "--bpm must be a tempo above 0 and at most 999, not '" + value + "'";
                return false;
            }
        }
        else if (option == "--notes")
        {
            hasNotes = true;
            const auto noteTexts = juce::StringArray::fromTokens (value, ",", {});
            for (const auto& noteText : noteTexts)
            {
                Note note {};
                if (! parseNote (noteText.trim(), note, error))
                    return false;
                options.notes.push_back (note);
            }
        }
        else if (option == "--set")
        {
            // Several ID=VALUE may follow one --set.
            for (int j = i;; ++j)
            {
                Setting setting;
                if (! parseSetting (args[j], setting, error))
                    return false;
                options.settings.push_back (setting);
                i = j;
                if (j + 1 >= args.size() || args[j + 1].startsWith ("--"))
                    break;
            }
        }
    }

    if (options.out == juce::File())
    {
        error = "no output file given (--out FILE.wav)";
        return false;
    }
    if (options.out.isDirectory())
    {
        error = "cannot write output file " + options.out.getFullPathName() + ": it is a folder";
        return false;
    }
    if (hasNotes && options.midiFile != juce::File())
    {
        error = "--notes and --midi cannot be combined";
        return false;
    }
    if (options.preset != juce::File() && options.stateIn != juce::File())
    {
        error = "--preset and --state-in cannot be combined";
        return false;
    }
    for (const auto& note : options.notes)
    {
        if (options.sampleAt (note.startSeconds + note.durationSeconds) <= options.sampleAt (note.startSeconds))
        {
            error = "malformed note " + juce::String (note.noteNumber) + ": it is shorter than one sample at "
                    + juce::String (options.sampleRate) + " Hz";
            return false;
        }
    }
    if (! hasPlugin)
        options.plugin = ONDRIVEL_DEFAULT_BUNDLE;
    if (options.totalFrames() < 1)
    {
        error = "--seconds is shorter than one sample";
        return false;
    }
    return true;
}

juce::String RenderOptions::usage()
{
    return "usage: ondrivel-render [--plugin PATH.vst3|PATH.lv2|LV2-URI] --out FILE.wav [--seconds S] [--rate HZ] [--block N]\n"
           "                       [--notes NOTE:VEL:START:DUR[,...]] [--midi FILE.mid] [--set ID=VALUE ...]\n"
           "                       [--bpm BPM] [--state-in FILE] [--state-out FILE] [--preset FILE.xml] [--json]\n"
           "Renders the plug-in offline into a 32-bit float stereo WAV file. Defaults: the plug-in built by\n"
           "this tree, 48000 Hz, block 256, 2 seconds, 120 BPM. A note starts at floor(START*HZ+0.5) and\n"
           "ends at floor((START+DUR)*HZ+0.5); --set takes values in the parameter's own units.\n";
}
