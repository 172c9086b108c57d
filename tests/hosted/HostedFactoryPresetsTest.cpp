// SPDX-License-Identifier: AGPL-3.0-or-later
// A new user of the installed bundle gets the factory presets in their music folder, and a returning
// user's library is left as it is.
#include <cstdlib>

#include "hosted/HostedPlugin.h"

namespace
{
struct FreshHome
{
    FreshHome()
    {
        if (const char* old = std::getenv ("HOME"))
            previous = old;
        folder = juce::File::getSpecialLocation (juce::File::tempDirectory).getNonexistentChildFile ("ondrivel-user-" + juce::String (juce::Random::getSystemRandom().nextInt64()), {}, false);
        folder.createDirectory();
        setenv ("HOME", folder.getFullPathName().toRawUTF8(), 1);
    }

    ~FreshHome()
    {
        setenv ("HOME", previous.toRawUTF8(), 1);
        folder.deleteRecursively();
    }

    juce::File library() const { return folder.getChildFile ("Music/ondrivel"); }

    juce::File folder;
    juce::String previous;
};

std::map<juce::String, juce::MemoryBlock> filesBelow (const juce::File& folder)
{
    std::map<juce::String, juce::MemoryBlock> result;
    for (const auto& f : folder.findChildFiles (juce::File::findFiles, true, "*"))
        f.loadFileAsData (result[f.getRelativePathFrom (folder)]);
    return result;
}
} // namespace

TEST (HostedFactoryPresets, AFreshUserGetsTheBundlesPresetsAndKeepsTheirOwnLater)
{
    HostEnvironment environment;
    FreshHome home;
    const auto factory = juce::File (ONDRIVEL_DEFAULT_BUNDLE).getChildFile ("Contents/Resources/Presets");
    const auto shipped = filesBelow (factory);
    ASSERT_GE (shipped.size(), 24u) << "the build installs the factory presets into the bundle";

    {
        auto host = hosted::loadBuiltPlugin();
        ASSERT_NE (host, nullptr);
        EXPECT_EQ (hosted::render (*host, 4800).nonFinite, 0);
    }
    EXPECT_EQ (filesBelow (home.library()), shipped);

    // The user edits one preset and deletes another; the next start copies nothing back over them.
    const auto first = home.library().getChildFile (shipped.begin()->first);
    const auto second = home.library().getChildFile (std::next (shipped.begin())->first);
    first.replaceWithText ("<ondrivel><PROGRAM NAME=\"my version\"/></ondrivel>");
    second.deleteFile();
    const auto edited = filesBelow (home.library());
    {
        auto host = hosted::loadBuiltPlugin();
        ASSERT_NE (host, nullptr);
    }
    EXPECT_EQ (filesBelow (home.library()), edited);
}
