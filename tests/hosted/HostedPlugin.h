// SPDX-License-Identifier: AGPL-3.0-or-later
// Helpers for tests that load the built VST3 bundle through the hosting library.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "HostEnvironment.h"
#include "PluginHost.h"
#include "core/ParameterTable.h"
#include "engine/support/ScopedHome.h"

namespace hosted
{
inline const int standardChord[] = { 48, 52, 55, 59, 62, 65, 69, 72 };

// The built VST3 bundle, or another built bundle, at 48 kHz in blocks of 256.
inline std::unique_ptr<PluginHost> loadBuiltPlugin (const juce::String& bundle = ONDRIVEL_DEFAULT_BUNDLE)
{
    juce::String error;
    auto host = PluginHost::load (bundle, 48000.0, 256, error);
    EXPECT_NE (host, nullptr) << error;
    return host;
}

// Renders `frames` frames in blocks of the host's size, with notes scheduled before.
inline juce::AudioBuffer<float> render (PluginHost& host, int frames)
{
    juce::AudioBuffer<float> out (2, frames);
    for (int done = 0; done < frames; done += host.getBlockSize())
    {
        const int n = juce::jmin (host.getBlockSize(), frames - done);
        const auto& block = host.renderNext (n);
        for (int ch = 0; ch < 2; ++ch)
            out.copyFrom (ch, done, block, ch, 0, n);
    }
    return out;
}

// Samples in which two renders differ; NaN differs from everything.
inline int differingSamples (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b)
{
    int differing = 0;
    for (int ch = 0; ch < 2; ++ch)
        for (int i = 0; i < a.getNumSamples(); ++i)
            differing += a.getSample (ch, i) != b.getSample (ch, i) ? 1 : 0;
    return differing;
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
