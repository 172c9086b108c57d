// SPDX-License-Identifier: AGPL-3.0-or-later
// A processor in a throw-away home folder, with its editor opened the way a host opens it.
#pragma once

#include <gtest/gtest.h>
#include <memory>

#include "core/KestruneAudioProcessor.h"
#include "editor/GlobalSettings.h"
#include "editor/MainWindow.h"
#include "editor/PelvaneAudioProcessorEditor.h"
#include "engine/presets/PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

class EditorFixture : public ::testing::Test
{
protected:
    KestruneAudioProcessor& processor() { return *test->processor; }

    // Opens the editor as a host does; the settings and the preset library are read again as it opens.
    PelvaneAudioProcessorEditor& openEditor()
    {
        editor.reset();
        editor.reset (dynamic_cast<PelvaneAudioProcessorEditor*> (processor().createEditor()));
        return *editor;
    }

    void closeEditor() { editor.reset(); }

    MainWindow& panel() { return *editor->getMainWindow(); }
    juce::Component* control (const juce::String& id) { return panel().findChildWithID (id); }
    juce::RangedAudioParameter& parameter (const juce::String& id) { return *processor().parameters.getParameter (id); }

    juce::File settingsFile() { return juce::File (processor().dataFolder + "Settings.xml"); }

    void writeSettings (const juce::String& content)
    {
        settingsFile().getParentDirectory().createDirectory();
        settingsFile().replaceWithText (content, false, false, nullptr);
    }

    GlobalSettings storedSettings()
    {
        GlobalSettings stored;
        stored.dataFolder = processor().dataFolder;
        stored.read();
        return stored;
    }

    static void pump (int milliseconds = 10) { juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds); }

    // In this order: the processor finds its folders through HOME, and the editor goes first.
    ScopedTempHome home;
    std::unique_ptr<TestProcessor> test = std::make_unique<TestProcessor>();
    std::unique_ptr<PelvaneAudioProcessorEditor> editor;
};
