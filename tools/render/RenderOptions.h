// SPDX-License-Identifier: AGPL-3.0-or-later
// The renderer's command line: what to load, what to play and where to write it.
#pragma once

#include <vector>

#include <juce_core/juce_core.h>

struct RenderOptions
{
    struct Note
    {
        int noteNumber;
        int velocity;
        double startSeconds;
        double durationSeconds;
    };

    struct Setting
    {
        juce::String id;
        double value;
    };

    juce::String plugin; // a bundle path (.vst3 or .lv2) or an LV2 URI
    juce::File out;
    juce::File midiFile;
    juce::File stateIn;
    juce::File stateOut;
    juce::File preset;
    double seconds = 2.0;
    int sampleRate = 48000;
    int blockSize = 256;
    double bpm = 120.0;
    std::vector<Note> notes;
    std::vector<Setting> settings;
    bool json = false;
    bool helpRequested = false;

    juce::int64 totalFrames() const;
    // A time in seconds to the sample it falls on: floor (t * rate + 0.5).
    juce::int64 sampleAt (double secondsFromStart) const;

    // Reads the arguments (without the program name). Relative paths are taken against
    // `workingDirectory` now, because the plug-in changes the process's working directory when it
    // loads. On a bad argument returns false with a one-line reason in `error`.
    static bool parse (const juce::StringArray& args, const juce::File& workingDirectory, RenderOptions& options,
                       juce::String& error);

    static juce::String usage();
};
