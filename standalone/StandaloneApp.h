// SPDX-License-Identifier: AGPL-3.0-or-later
// The program `ondrivel`: the plug-in in a window of its own, playing through the audio and MIDI
// devices chosen in the framework's settings dialog. Without a display it says so and exits.
#pragma once

#include <memory>

#include "standalone/StandaloneWindow.h"

class StandaloneApp : public juce::JUCEApplication
{
public:
    StandaloneApp();

    const juce::String getApplicationName() override;
    const juce::String getApplicationVersion() override;
    bool moreThanOneInstanceAllowed() override { return true; }

    void initialise (const juce::String& commandLine) override;
    void shutdown() override;
    void systemRequestedQuit() override;

private:
    juce::ApplicationProperties properties;
    std::unique_ptr<StandaloneWindow> window;
};
