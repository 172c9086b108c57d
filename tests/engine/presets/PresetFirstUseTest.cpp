// SPDX-License-Identifier: AGPL-3.0-or-later
// First use: the factory presets are copied into an empty library, sub-folders included, and never
// over a user's file.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "core/BundleResources.h"
#include "engine/support/TestProcessor.h"

TEST (PresetFirstUse, FactoryPresetsFillOnlyAnEmptyLibraryAndNeverReplaceAUsersFile)
{
    ScopedTempHome home;
    // A folder shaped like the installed bundle, with two factory presets, one in a sub-folder.
    const auto bundle = home.folder.getChildFile ("ondrivel.vst3");
    const auto binary = bundle.getChildFile ("Contents/x86_64-linux/ondrivel.so");
    const auto factory = bundle.getChildFile ("Contents/Resources/Presets");
    binary.getParentDirectory().createDirectory();
    binary.create();
    writePresetFile (factory.getChildFile ("Factory One.xml"), "Factory One", "Pad", "Velkaro");
    writePresetFile (factory.getChildFile ("Basses/Factory Two.xml"), "Factory Two", "Bass", "Velkaro");
    const auto lib = home.library();

    {
        TestProcessor t;
        auto& manager = t.processor->presetManager;
        manager.readyPresetFolder (BundleResources::resourcesFolderFor (binary).getChildFile ("Presets"));
        manager.reload();
        EXPECT_EQ (namesOf (manager.getPresets()), (std::vector<juce::String> { "Factory Two", "Factory One" }));
        EXPECT_EQ (snapshotFiles (lib), snapshotFiles (factory)) << "copied byte for byte";
    }

    // A preset file at the top level means the library is in use: nothing is copied.
    lib.deleteRecursively();
    writePresetFile (lib.getChildFile ("mine.xml"), "mine");
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (lib, factory);
    EXPECT_EQ (snapshotFiles (lib).size(), 1u);

    // Presets only in sub-folders do not count, so the factory set is copied, but a user's file of the
    // same name is kept as it is.
    lib.getChildFile ("mine.xml").deleteFile();
    writePresetFile (lib.getChildFile ("Basses/Factory Two.xml"), "my own edit");
    const auto users = snapshotFiles (lib);
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (lib, factory);
    const auto after = snapshotFiles (lib);
    EXPECT_EQ (after.size(), 2u);
    EXPECT_EQ (after.at ("Basses/Factory Two.xml"), users.at ("Basses/Factory Two.xml"));
    EXPECT_TRUE (lib.getChildFile ("Factory One.xml").existsAsFile());

    // A bundle without presets copies nothing and fails nothing.
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (home.folder.getChildFile ("empty"), home.folder.getChildFile ("none"));
    EXPECT_FALSE (home.folder.getChildFile ("empty").exists());
}
