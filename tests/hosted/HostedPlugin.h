// SPDX-License-Identifier: AGPL-3.0-or-later
// Helpers for tests that load the built VST3 bundle through the hosting library.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>

#include "HostEnvironment.h"
#include "PluginHost.h"
#include "core/ParameterTable.h"

namespace hosted
{
inline const int standardChord[] = { 48, 52, 55, 59, 62, 65, 69, 72 };

inline std::unique_ptr<PluginHost> loadBuiltPlugin (double sampleRate = 48000.0, int blockSize = 256)
{
    juce::String error;
    auto host = PluginHost::load (juce::File (ONDRIVEL_DEFAULT_BUNDLE), sampleRate, blockSize, error);
    EXPECT_NE (host, nullptr) << error;
    return host;
}

// What rendered blocks held: how many non-finite samples, and the peak of the finite ones.
struct Levels
{
    juce::int64 blocks = 0, nonFinite = 0;
    float peak = 0.0f;

    void add (const juce::AudioBuffer<float>& block, int n)
    {
        ++blocks;
        for (int ch = 0; ch < block.getNumChannels(); ++ch)
            for (int i = 0; i < n; ++i)
                if (const float x = block.getSample (ch, i); ! std::isfinite (x))
                    ++nonFinite;
                else
                    peak = juce::jmax (peak, std::abs (x));
    }
};

// Renders `frames` frames in blocks of the host's size.
inline Levels render (PluginHost& host, juce::int64 frames)
{
    Levels levels;
    for (juce::int64 done = 0; done < frames; done += host.getBlockSize())
    {
        const int n = (int) juce::jmin ((juce::int64) host.getBlockSize(), frames - done);
        levels.add (host.renderNext (n), n);
    }
    return levels;
}

// The plug-in's state tree as the host saved it, and one value in it.
inline std::unique_ptr<juce::XmlElement> stateXml (PluginHost& host)
{
    const auto block = host.getState();
    return juce::AudioProcessor::getXmlFromBinary (block.getData(), (int) block.getSize());
}

inline juce::String stateValue (const juce::XmlElement& state, const juce::String& id)
{
    for (auto* child : state.getChildWithTagNameIterator ("PARAM"))
        if (child->getStringAttribute ("id") == id)
            return child->getStringAttribute ("value");
    return {};
}

// A test fixture with the framework running and the built plug-in loaded at 48 kHz, block 256.
class HostedPluginTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host = loadBuiltPlugin();
        ASSERT_NE (host, nullptr);
    }

    juce::AudioProcessorParameter& parameter (const char* id)
    {
        if (auto* p = host->findParameter (id))
            return *p;
        throw std::runtime_error (std::string ("the hosted plug-in has no parameter ") + id);
    }

    HostEnvironment environment;
    std::unique_ptr<PluginHost> host;
};
} // namespace hosted
