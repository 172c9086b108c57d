// SPDX-License-Identifier: AGPL-3.0-or-later
// The standard benchmark job on one or more instances of a VST3 bundle in one process: a patch, the
// notes held from the first sample, rendered block after block with every instance in turn, as a
// host's audio thread does.
#pragma once

#include <memory>
#include <vector>

#include "PluginHost.h"

class BenchJob
{
public:
    static constexpr int blockSize = 256;

    // `patch` is "full" (octaver, flanger, delay, reverb and dry/wet all working), "default" (the
    // chord on the patch a fresh instance has), "note" (one note on it) or "idle" (no notes).
    static bool isPatch (const juce::String& patch);
    static std::unique_ptr<BenchJob> load (const juce::File& bundle, const juce::String& patch, int instances,
                                           double sampleRate, juce::String& error);

    // Renders this many blocks on every instance; returns the audio seconds rendered by each.
    double render (int blocks);

private:
    BenchJob (double rate) : sampleRate (rate) {}
    static bool applyPatch (PluginHost& host, const juce::String& patch, juce::String& error);

    std::vector<std::unique_ptr<PluginHost>> hosts;
    double sampleRate;
    volatile float sink = 0.0f; // keeps the rendered audio observable
};
