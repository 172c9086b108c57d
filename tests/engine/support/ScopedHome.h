// SPDX-License-Identifier: AGPL-3.0-or-later
// Points HOME at a fresh temporary folder while alive, so that the music folder, the library and the
// settings live there and tests run in parallel never share a file; and what the files below a folder hold.
#pragma once

#include <cstdlib>
#include <map>

#include <juce_core/juce_core.h>

struct ScopedHome
{
    ScopedHome() { folder.createDirectory(), setenv ("HOME", folder.getFullPathName().toRawUTF8(), 1); }
    ~ScopedHome() { setenv ("HOME", previous.toRawUTF8(), 1), folder.deleteRecursively(); }

    const juce::String previous = juce::SystemStats::getEnvironmentVariable ("HOME", {});
    const juce::File folder = juce::File::getSpecialLocation (juce::File::tempDirectory)
                                  .getNonexistentChildFile ("ondrivel-home-" + juce::String (juce::Random::getSystemRandom().nextInt64()), {}, false);
};

// Every file below `folder` with its bytes, to prove what a scan or a save did or did not write.
inline std::map<juce::String, juce::MemoryBlock> snapshotFiles (const juce::File& folder)
{
    std::map<juce::String, juce::MemoryBlock> result;
    for (const auto& f : folder.findChildFiles (juce::File::findFiles, true, "*", juce::File::FollowSymlinks::noCycles))
        f.loadFileAsData (result[f.getRelativePathFrom (folder)]);
    return result;
}
