// SPDX-License-Identifier: AGPL-3.0-or-later
// A processor with its editor opened the way a host opens it, and a clean settings folder.
#pragma once

#include <gtest/gtest.h>
#include <cstdlib>
#include <memory>

#include "core/KestruneAudioProcessor.h"
#include "editor/GlobalSettings.h"
#include "editor/MainWindow.h"
#include "editor/PelvaneAudioProcessorEditor.h"
#include "../support/TestProcessor.h"

class EditorFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Each test gets a home of its own, so that tests run in parallel never share the
        // settings and picture files.
        savedHome = juce::SystemStats::getEnvironmentVariable ("HOME", {});
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        const auto home = juce::File (savedHome).getChildFile (juce::String ("editor-") + info->name());
        home.createDirectory();
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
        test = std::make_unique<TestProcessor>();

        settingsFile().deleteFile();
        savedBackgroundFile().deleteFile();
        resetParameters();
    }

    void TearDown() override
    {
        editor.reset();
        settingsFile().deleteFile();
        savedBackgroundFile().deleteFile();
        test.reset();
        setenv ("HOME", savedHome.toRawUTF8(), 1);
    }

    KestruneAudioProcessor& processor() { return *test->processor; }

    juce::File settingsFile() const { return juce::File (test->processor->dataFolder + "Settings.xml"); }

    PelvaneAudioProcessorEditor& openEditor()
    {
        editor.reset();
        editor.reset (dynamic_cast<PelvaneAudioProcessorEditor*> (test->processor->createEditor()));
        return *editor;
    }

    void closeEditor() { editor.reset(); }

    MainWindow& panel() { return *editor->getMainWindow(); }

    juce::Component* control (const juce::String& id) { return panel().findChildWithID (id); }

    juce::RangedAudioParameter& parameter (const juce::String& id) { return *processor().parameters.getParameter (id); }

    void resetParameters()
    {
        for (auto* p : test->processor->getParameters())
            p->setValueNotifyingHost (p->getDefaultValue());
    }

    void writeSettings (const juce::String& content)
    {
        settingsFile().getParentDirectory().createDirectory();
        settingsFile().replaceWithText (content, false, false, nullptr);
    }

    juce::String savedHome;
    std::unique_ptr<TestProcessor> test;
    std::unique_ptr<PelvaneAudioProcessorEditor> editor;
};
