// SPDX-License-Identifier: AGPL-3.0-or-later
// A processor with its editor open over a throw-away music folder, and helpers that act like a user
// on the preset toolbar and its panels.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>

#include "core/KestruneAudioProcessor.h"
#include "core/ParameterTable.h"
#include "editor/MainWindow.h"
#include "editor/PelvaneAudioProcessorEditor.h"
#include "presets/Preset.h"
#include "presets/PresetsToolbar.h"
#include "../support/TestProcessor.h"

class BrowserFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (const char* old = std::getenv ("HOME"))
            previousHome = old;
        home = juce::File::getSpecialLocation (juce::File::tempDirectory).getNonexistentChildFile ("ondrivel-browser", {}, false);
        home.createDirectory();
        setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
        test = std::make_unique<TestProcessor>();
    }

    void TearDown() override
    {
        editor.reset();
        test.reset();
        if (previousHome.isNotEmpty())
            setenv ("HOME", previousHome.toRawUTF8(), 1);
        home.deleteRecursively();
    }

    KestruneAudioProcessor& processor() { return *test->processor; }
    velkaro::PresetManager& manager() { return processor().presetManager; }
    juce::File library() const { return velkaro::PresetManager::presetFolder(); }

    // Writes a preset file holding every parameter at its default, or at `values` where given.
    juce::File writePreset (const juce::String& fileName, const juce::String& name, const juce::String& type,
                            const juce::String& author, const std::map<juce::String, float>& values = {})
    {
        auto xml = std::make_unique<juce::XmlElement> ("ondrivel");
        auto* program = xml->createNewChildElement ("PROGRAM");
        program->setAttribute ("NAME", name);
        program->setAttribute ("TYPE", type);
        program->setAttribute ("AUTHOR", author);
        for (const auto& row : parameterTable)
        {
            auto* param = xml->createNewChildElement ("PARAM");
            param->setAttribute ("id", row.id);
            const auto found = values.find (row.id);
            param->setAttribute ("value", found != values.end() ? found->second : row.defaultValue);
        }
        xml->createNewChildElement ("NOTES")->setAttribute ("TEXT", "notes of " + name);

        const auto file = library().getChildFile (fileName);
        file.getParentDirectory().createDirectory();
        xml->writeTo (file, velkaro::Preset::fileFormat());
        return file;
    }

    // Opens the editor as a host does; the library is read again as it opens.
    PelvaneAudioProcessorEditor& openEditor()
    {
        editor.reset();
        editor.reset (dynamic_cast<PelvaneAudioProcessorEditor*> (processor().createEditor()));
        return *editor;
    }

    MainWindow& panel() { return *editor->getMainWindow(); }
    velkaro::PresetsToolbar& toolbar() { return panel().presetsToolbar; }
    velkaro::PresetsPanel& browser() { return toolbar().presetsPanel; }
    velkaro::ProgramPanel& programPanel() { return toolbar().programPanel; }

    // A click as the user makes it: nothing happens on a disabled button.
    static void click (juce::Button& button)
    {
        if (! button.isEnabled())
            return;
        button.triggerClick();
        pump();
    }

    static void pump (int milliseconds = 10) { juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds); }

    // Lets the toolbar see the editing state as its timer would, after the parameters reached the tree.
    void tick()
    {
        processor().parameters.copyState();
        toolbar().timerCallback();
    }

    // Finishes editing a property row of the program panel with `text`, as typing and Return do.
    static void enterText (juce::TextPropertyComponent& property, const juce::String& text)
    {
        property.setText (text);
        property.textWasEdited();
    }

    // Double-clicks a cell of the browser's table, types `text` and presses Return.
    void editCell (int row, int columnId, const juce::String& text)
    {
        auto& table = browser().table;
        const auto now = juce::Time::getCurrentTime();
        const juce::MouseEvent doubleClick (juce::Desktop::getInstance().getMainMouseSource(), {}, {}, 0.0f, 0.0f, 0.0f, 0.0f,
                                            0.0f, &table.table, &table.table, now, {}, now, 2, false);
        table.cellDoubleClicked (row, columnId, doubleClick);
        auto* textEditor = table.editor.getCurrentTextEditor();
        ASSERT_NE (textEditor, nullptr);
        textEditor->setText (text, false);
        table.editor.textEditorReturnKeyPressed (*textEditor);
    }

    float plainValue (const juce::String& id) { return processor().parameters.getRawParameterValue (id)->load(); }

    std::vector<juce::String> listedNames()
    {
        std::vector<juce::String> names;
        for (const auto* preset : manager().getPresets())
            names.push_back (preset->name);
        return names;
    }

    juce::File home;
    juce::String previousHome;
    std::unique_ptr<TestProcessor> test;
    std::unique_ptr<PelvaneAudioProcessorEditor> editor;
};
