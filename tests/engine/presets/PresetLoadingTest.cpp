// SPDX-License-Identifier: AGPL-3.0-or-later
// Loading a preset into the plug-in: parameters, undo history, the program record and the edit latch.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
void setPlain (KestruneAudioProcessor& p, const char* id, float value)
{
    auto* param = p.parameters.getParameter (id);
    param->setValueNotifyingHost (param->convertTo0to1 (value));
}
} // namespace

TEST (PresetLoading, SetsEveryParameterClearsUndoAndReportsTheNewPreset)
{
    ScopedTempHome home;
    writePresetFile (home.library().getChildFile ("p.xml"), "Loaded", "Keys", "Ann",
                     { { "timbre", "0.75" }, { "time", "2500" }, { "pitch", "16" }, { "ws", "1" }, { "volume", "0.25" } });
    TestProcessor t;
    auto& p = *t.processor;
    auto& manager = p.presetManager;

    setPlain (p, "noise", 0.9f);
    p.parameters.state.getChild (0).setProperty ("value", 0.3f, &p.undoManager);
    ASSERT_TRUE (p.undoManager.canUndo());

    int reports = 0;
    const velkaro::Preset* reported = nullptr;
    manager.onPresetChange = [&] (const velkaro::Preset* preset) { ++reports; reported = preset; };
    manager.selectPreset (0);

    EXPECT_EQ (reports, 1);
    ASSERT_NE (reported, nullptr);
    EXPECT_EQ (reported->name, "Loaded");
    EXPECT_EQ (manager.getCurrentPreset(), reported);
    EXPECT_FALSE (p.undoManager.canUndo());
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::timbre), 0.75f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::time), 2500.0f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::pitch), 16.0f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::ws), 1.0f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::volume), 0.25f);
    EXPECT_FLOAT_EQ (p.getParameterValue (ParameterIndex::noise), 0.0f) << "the file's value replaces the edit";

    const auto& program = manager.getCurrentProgram();
    EXPECT_EQ (program.preset, reported);
    EXPECT_EQ (program.name, "Loaded");
    EXPECT_EQ (program.type, "Keys");
    EXPECT_EQ (program.author, "Ann");
    EXPECT_EQ (program.notes, "notes of Loaded");
    EXPECT_TRUE (program.original.isEquivalentTo (juce::ValueTree::fromXml (*reported)));
    EXPECT_FALSE (program.edited.isValid());
    EXPECT_FALSE (program.isModified);
    EXPECT_FALSE (manager.isModified());
    EXPECT_EQ (p.getNumPrograms(), 1);
    EXPECT_EQ (p.getCurrentProgram(), 0);

    // The state the host saves now carries the preset's name.
    EXPECT_EQ (velkaro::readInfo (p.parameters.copyState()).name, "Loaded");
}

TEST (PresetLoading, OnlyTheFirstEditAfterALoadIsReported)
{
    ScopedTempHome home;
    writePresetFile (home.library().getChildFile ("p.xml"), "p");
    TestProcessor t;
    auto& p = *t.processor;
    auto& manager = p.presetManager;
    int reports = 0;
    manager.onProgramModified = [&] { ++reports; };

    manager.selectPreset (0);
    EXPECT_EQ (reports, 0) << "loaded values are no edit";

    for (const float v : { 0.1f, 0.2f, 0.3f })
    {
        setPlain (p, "timbre", v);
        p.parameters.copyState(); // flushes the parameters into the tree, as the framework's timer does
    }
    EXPECT_EQ (reports, 1);
    EXPECT_TRUE (manager.isModified());
    EXPECT_TRUE (manager.getCurrentProgram().isModified);

    // A rebaseline re-arms the latch but the record stays modified until the next load.
    manager.rebaseline();
    EXPECT_FALSE (manager.isModified());
    EXPECT_TRUE (manager.getCurrentProgram().edited.isValid());
    setPlain (p, "timbre", 0.6f);
    p.parameters.copyState();
    EXPECT_EQ (reports, 2);

    manager.selectPreset (0);
    EXPECT_FALSE (manager.getCurrentProgram().isModified);
    EXPECT_FALSE (manager.isModified());
}
