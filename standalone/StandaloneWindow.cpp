// SPDX-License-Identifier: AGPL-3.0-or-later
#include "standalone/StandaloneWindow.h"

namespace
{
constexpr int stripHeight = 28;

// A MIDI keyboard plugged in while the program runs plays at once: the holder opens new inputs.
constexpr bool openNewMidiInputs = true;
} // namespace

StandaloneWindow::StandaloneWindow (const juce::String& title, juce::PropertySet& settings)
    : juce::StandaloneFilterWindow (title,
                                    juce::LookAndFeel::getDefaultLookAndFeel().findColour (juce::ResizableWindow::backgroundColourId),
                                    &settings, false, {}, nullptr, {}, openNewMidiInputs)
{
    noDeviceLabel.setText ("No audio device is open: the panel works, but you will hear nothing until you choose one.",
                           juce::dontSendNotification);
    noDeviceLabel.setColour (juce::Label::backgroundColourId, juce::Colour (0xfff0d060));
    noDeviceLabel.setColour (juce::Label::textColourId, juce::Colours::black);
    noDeviceLabel.setJustificationType (juce::Justification::centredLeft);
    chooseDeviceButton.setColour (juce::TextButton::buttonColourId, juce::Colour (0xff303060));
    chooseDeviceButton.setColour (juce::TextButton::textColourOffId, juce::Colours::white);
    chooseDeviceButton.onClick = [this] { pluginHolder->showAudioSettingsDialog(); };

    Component::addChildComponent (noDeviceLabel);
    Component::addChildComponent (chooseDeviceButton);
    getDeviceManager().addChangeListener (this);
    showDeviceState();
}

StandaloneWindow::~StandaloneWindow()
{
    getDeviceManager().removeChangeListener (this);
}

void StandaloneWindow::resized()
{
    juce::StandaloneFilterWindow::resized();
    auto strip = getLocalBounds().withTrimmedTop (getTitleBarHeight()).removeFromTop (stripHeight);
    chooseDeviceButton.setBounds (strip.removeFromRight (140).reduced (3));
    noDeviceLabel.setBounds (strip);
}

void StandaloneWindow::changeListenerCallback (juce::ChangeBroadcaster*)
{
    showDeviceState();
}

void StandaloneWindow::showDeviceState()
{
    const bool missing = getDeviceManager().getCurrentAudioDevice() == nullptr;
    noDeviceLabel.setVisible (missing);
    chooseDeviceButton.setVisible (missing);
    if (missing)
    {
        noDeviceLabel.toFront (false);
        chooseDeviceButton.toFront (false);
    }
    resized();
}
