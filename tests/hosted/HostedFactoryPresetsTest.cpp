// SPDX-License-Identifier: AGPL-3.0-or-later
// A new user of the installed bundle gets the factory presets in their music folder, and a returning
// user's library is left as it is.
#include "hosted/HostedPlugin.h"

TEST (HostedFactoryPresets, AFreshUserGetsTheBundlesPresetsAndKeepsTheirOwnLater)
{
    const auto filesBelow = [] (const juce::File& folder)
    {
        std::map<juce::String, juce::MemoryBlock> result;
        for (const auto& f : folder.findChildFiles (juce::File::findFiles, true, "*"))
            f.loadFileAsData (result[f.getRelativePathFrom (folder)]);
        return result;
    };
    const auto shipped = filesBelow (juce::File (ONDRIVEL_DEFAULT_BUNDLE).getChildFile ("Contents/Resources/Presets"));
    ASSERT_GE (shipped.size(), 24u) << "the build installs the factory presets into the bundle";
    HostEnvironment environment;
    hosted::ScopedHome home;
    const auto library = home.folder.getChildFile ("Music/ondrivel");

    EXPECT_NE (hosted::loadBuiltPlugin(), nullptr);
    EXPECT_EQ (filesBelow (library), shipped);

    // The user edits one preset and deletes another; the next start copies nothing back over them.
    library.getChildFile (shipped.begin()->first).replaceWithText ("<ondrivel><PROGRAM NAME=\"my version\"/></ondrivel>");
    library.getChildFile (std::next (shipped.begin())->first).deleteFile();
    const auto edited = filesBelow (library);
    EXPECT_NE (hosted::loadBuiltPlugin(), nullptr);
    EXPECT_EQ (filesBelow (library), edited);
}
