// SPDX-License-Identifier: AGPL-3.0-or-later
#include "standalone/StandaloneApp.h"

#include <iostream>

StandaloneApp::StandaloneApp()
{
    // Audio and MIDI choices and the last sound live in ~/.config/ondrivel.settings.
    juce::PropertiesFile::Options options;
    options.applicationName = getApplicationName();
    options.filenameSuffix = ".settings";
    options.folderName = "~/.config";
    properties.setStorageParameters (options);
}

const juce::String StandaloneApp::getApplicationName()
{
    return JucePlugin_Name;
}

const juce::String StandaloneApp::getApplicationVersion()
{
    return JucePlugin_VersionString;
}

void StandaloneApp::initialise (const juce::String&)
{
    // The framework would otherwise run the instrument with no window and no way to stop it.
    if (juce::Desktop::getInstance().getDisplays().displays.isEmpty())
    {
        std::cerr << "ondrivel: no display to open the window on (is DISPLAY set?)" << std::endl;
        setApplicationReturnValue (1);
        quit();
        return;
    }

    window = std::make_unique<StandaloneWindow> (getApplicationName(), *properties.getUserSettings());
    window->setVisible (true);
}

void StandaloneApp::shutdown()
{
    window = nullptr;
    properties.saveIfNeeded();
}

void StandaloneApp::systemRequestedQuit()
{
    if (window != nullptr)
        window->pluginHolder->savePluginState();

    // An open dialog closes first; the request comes again once it has gone.
    if (juce::ModalComponentManager::getInstance()->cancelAllModalComponents())
        juce::Timer::callAfterDelay (100, [] { if (auto* app = juce::JUCEApplicationBase::getInstance()) app->systemRequestedQuit(); });
    else
        quit();
}

juce::JUCEApplicationBase* juce_CreateApplication();
juce::JUCEApplicationBase* juce_CreateApplication()
{
    return new StandaloneApp();
}
