// SPDX-License-Identifier: AGPL-3.0-or-later
// The editor the host sees: a thin shell that scales one fixed-size MainWindow to its own width.
#pragma once

#include <memory>

#include <juce_audio_processors/juce_audio_processors.h>

#include "editor/GlobalSettings.h"

class KestruneAudioProcessor;
class MainWindow;

class PelvaneAudioProcessorEditor : public juce::AudioProcessorEditor
{
public:
    explicit PelvaneAudioProcessorEditor (KestruneAudioProcessor&);
    ~PelvaneAudioProcessorEditor() override;

    void paint (juce::Graphics&) override;
    void resized() override;

    MainWindow* getMainWindow() const noexcept { return mainWindow.get(); }

private:
    // Scales the panel to the editor's width and gives the editor the panel's aspect.
    void applyScale();

    KestruneAudioProcessor& processor;
    std::unique_ptr<MainWindow> mainWindow;
    GlobalSettings settings;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PelvaneAudioProcessorEditor)
};
