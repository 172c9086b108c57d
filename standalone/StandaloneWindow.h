// SPDX-License-Identifier: AGPL-3.0-or-later
// The program's window: the framework's standalone window with the panel, plus a strip over the top
// of the panel that says so while no audio device is open and leads to the audio settings.
#pragma once

#include <juce_audio_devices/juce_audio_devices.h>
#include <juce_audio_utils/juce_audio_utils.h>
#include <juce_gui_extra/juce_gui_extra.h>
#include <juce_audio_plugin_client/Standalone/juce_StandaloneFilterWindow.h>

class StandaloneWindow : public juce::StandaloneFilterWindow,
                         private juce::ChangeListener
{
public:
    StandaloneWindow (const juce::String& title, juce::PropertySet& settings);
    ~StandaloneWindow() override;

    void resized() override;

private:
    void changeListenerCallback (juce::ChangeBroadcaster*) override;
    void showDeviceState();

    juce::Label noDeviceLabel;
    juce::TextButton chooseDeviceButton { "Audio settings..." };

    JUCE_DECLARE_NON_COPYABLE (StandaloneWindow)
};
