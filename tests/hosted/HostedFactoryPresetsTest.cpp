// SPDX-License-Identifier: AGPL-3.0-or-later
// A new user of the installed bundle gets the factory presets in their music folder, and a returning
// user's library is left as it is.
#include "hosted/HostedPlugin.h"

TEST (HostedFactoryPresets, AFreshUserGetsTheBundlesPresetsAndKeepsTheirOwnLater)
{
    const auto shipped = snapshotFiles (juce::File (ONDRIVEL_DEFAULT_BUNDLE).getChildFile ("Contents/Resources/Presets"));
    ASSERT_GE (shipped.size(), 24u) << "the build installs the factory presets into the bundle";
    HostEnvironment environment;
    ScopedHome home;
    const auto library = home.folder.getChildFile ("Music/ondrivel");

    EXPECT_NE (hosted::loadBuiltPlugin(), nullptr);
    EXPECT_EQ (snapshotFiles (library), shipped);

    // The user edits one preset and deletes another; the next start copies nothing back over them.
    library.getChildFile (shipped.begin()->first).replaceWithText ("<ondrivel><PROGRAM NAME=\"my version\"/></ondrivel>");
    library.getChildFile (std::next (shipped.begin())->first).deleteFile();
    const auto edited = snapshotFiles (library);
    EXPECT_NE (hosted::loadBuiltPlugin(), nullptr);
    EXPECT_EQ (snapshotFiles (library), edited);
}
