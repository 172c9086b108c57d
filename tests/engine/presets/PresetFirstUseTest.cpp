// SPDX-License-Identifier: AGPL-3.0-or-later
// First use: finding the bundle's resources from the plug-in binary, and copying the factory presets
// into an empty library without ever replacing a user's file.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "core/BundleResources.h"
#include "engine/support/TestProcessor.h"

namespace
{
// A folder shaped like the installed VST3 bundle, with two factory presets, one in a sub-folder.
struct FakeBundle
{
    explicit FakeBundle (const juce::File& parent)
        : bundle (parent.getChildFile ("ondrivel.vst3")),
          binary (bundle.getChildFile ("Contents/x86_64-linux/ondrivel.so")),
          presets (bundle.getChildFile ("Contents/Resources/Presets"))
    {
        binary.getParentDirectory().createDirectory();
        binary.create();
        writePresetFile (presets.getChildFile ("Factory One.xml"), "Factory One", "Pad", "Velkaro");
        writePresetFile (presets.getChildFile ("Basses/Factory Two.xml"), "Factory Two", "Bass", "Velkaro");
    }

    juce::File bundle, binary, presets;
};
} // namespace

TEST (BundleResources, FindsContentsResourcesFromTheBinaryOrTheBundle)
{
    ScopedTempHome home;
    const FakeBundle fake (home.folder);
    const auto resources = fake.bundle.getChildFile ("Contents/Resources");
    EXPECT_EQ (BundleResources::resourcesFolderFor (fake.binary), resources);
    EXPECT_EQ (BundleResources::resourcesFolderFor (fake.bundle), resources);
    EXPECT_FALSE (BundleResources::resourcesFolderFor (home.folder.getChildFile ("bin/program")).exists());

    // Linked into a program, the module is the program itself, which lies in no bundle.
    const auto module = BundleResources::getModuleFile();
    EXPECT_TRUE (module.existsAsFile()) << module.getFullPathName();
    EXPECT_EQ (module.getFileName(), juce::File::getSpecialLocation (juce::File::currentExecutableFile).getFileName());
    EXPECT_FALSE (BundleResources::getPresetsFolder().exists());
}

TEST (PresetFirstUse, AnEmptyLibraryGetsTheFactorySetWithItsSubFolders)
{
    ScopedTempHome home;
    const FakeBundle fake (home.folder);
    TestProcessor t;
    auto& manager = t.processor->presetManager;
    manager.readyPresetFolder (BundleResources::resourcesFolderFor (fake.binary).getChildFile ("Presets"));
    manager.reload();
    EXPECT_EQ (namesOf (manager.getPresets()), (std::vector<juce::String> { "Factory Two", "Factory One" }));
    EXPECT_TRUE (home.library().getChildFile ("Basses/Factory Two.xml").existsAsFile());
    EXPECT_EQ (snapshotFiles (home.library()), snapshotFiles (fake.presets)) << "copied byte for byte";
}

TEST (PresetFirstUse, CopiesNothingOverAUsersFiles)
{
    ScopedTempHome home;
    const FakeBundle fake (home.folder);
    const auto lib = home.library();

    // A preset file at the top level means the library is in use: nothing is copied.
    writePresetFile (lib.getChildFile ("mine.xml"), "mine");
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (lib, fake.presets);
    EXPECT_EQ (snapshotFiles (lib).size(), 1u);

    // Presets only in sub-folders do not count, so the factory set is copied, but a user's file of the
    // same name is kept as it is.
    lib.getChildFile ("mine.xml").deleteFile();
    writePresetFile (lib.getChildFile ("Basses/Factory Two.xml"), "my own edit");
    const auto users = snapshotFiles (lib);
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (lib, fake.presets);
    const auto after = snapshotFiles (lib);
    EXPECT_EQ (after.size(), 2u);
    EXPECT_EQ (after.at ("Basses/Factory Two.xml"), users.at ("Basses/Factory Two.xml"));
    EXPECT_TRUE (lib.getChildFile ("Factory One.xml").existsAsFile());

    // A bundle without presets copies nothing and fails nothing.
    velkaro::PresetManager::copyFactoryPresetsIfEmpty (home.folder.getChildFile ("empty"), home.folder.getChildFile ("none"));
    EXPECT_FALSE (home.folder.getChildFile ("empty").exists());
}

TEST (PresetFirstUse, ALibraryFolderThatCannotBeMadeLeavesTheInitPreset)
{
    struct Case { const char* what; std::function<void (const juce::File& home)> prepare; };
    const Case cases[] = {
        { "music folder is a file", [] (const juce::File& h) { h.getChildFile ("Music").replaceWithText ("x"); } },
        { "library is a file", [] (const juce::File& h) { h.getChildFile ("Music").createDirectory();
                                                          h.getChildFile ("Music/ondrivel").replaceWithText ("x"); } },
        { "home is read-only", [] (const juce::File& h) { ::chmod (h.getFullPathName().toRawUTF8(), 0555); } },
    };
    for (const auto& c : cases)
    {
        ScopedTempHome home;
        c.prepare (home.folder);
        {
            TestProcessor t;
            auto& manager = t.processor->presetManager;
            ASSERT_EQ (manager.getNumPresets(), 1u) << c.what;
            EXPECT_EQ (manager.getPresets()[0]->name, "[init]") << c.what;
            manager.selectNext();
            EXPECT_EQ (manager.getCurrentPreset(), manager.getPresets()[0]) << c.what;
        }
        ::chmod (home.folder.getFullPathName().toRawUTF8(), 0755);
    }
}
