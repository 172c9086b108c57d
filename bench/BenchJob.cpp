// SPDX-License-Identifier: AGPL-3.0-or-later
#include "BenchJob.h"

#include <algorithm>

namespace
{
const int standardChord[] = { 48, 52, 55, 59, 62, 65, 69, 72 };
constexpr int velocity = 100;
constexpr int singleNote = 60;

struct Setting
{
    const char* id;
    double value;
};

// Every module of the chain switched in, and audible.
const Setting fullPatch[] = { { "bp1", 1.0 },       { "bp2", 1.0 },    { "bp3", 1.0 },
                              { "flangerit", 0.5 }, { "reverb", 0.5 }, { "drywet", 0.5 } };
} // namespace

bool BenchJob::isPatch (const juce::String& patch)
{
    return patch == "full" || patch == "default" || patch == "note" || patch == "idle";
}

std::unique_ptr<BenchJob> BenchJob::load (const juce::File& bundle, const juce::String& patch, int instances,
                                          double sampleRate, juce::String& error)
{
    if (! isPatch (patch))
    {
        error = "unknown patch " + patch;
        return nullptr;
    }
    std::unique_ptr<BenchJob> job (new BenchJob (sampleRate));
    for (int i = 0; i < std::max (1, instances); ++i)
    {
        auto host = PluginHost::load (bundle, sampleRate, blockSize, error);
        if (host == nullptr || ! applyPatch (*host, patch, error))
            return nullptr;
        job->hosts.push_back (std::move (host));
    }
    return job;
}

bool BenchJob::applyPatch (PluginHost& host, const juce::String& patch, juce::String& error)
{
    if (patch == "full")
        for (const auto& setting : fullPatch)
        {
            auto* parameter = host.findParameter (setting.id);
            if (parameter == nullptr)
            {
                error = juce::String ("the plug-in has no parameter ") + setting.id;
                return false;
            }
            PluginHost::setParameterValue (*parameter, setting.value);
        }

    // Held for the whole run: no note-off is ever scheduled.
    if (patch == "note")
        host.scheduleMidi (0, juce::MidiMessage::noteOn (1, singleNote, (juce::uint8) velocity));
    else if (patch != "idle")
        for (int note : standardChord)
            host.scheduleMidi (0, juce::MidiMessage::noteOn (1, note, (juce::uint8) velocity));
    return true;
}

double BenchJob::render (int blocks)
{
    for (int b = 0; b < blocks; ++b)
        for (auto& host : hosts)
            sink = host->renderNext (blockSize).getSample (0, 0);
    return (double) blocks * blockSize / sampleRate;
}
