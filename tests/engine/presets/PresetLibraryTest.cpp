// SPDX-License-Identifier: AGPL-3.0-or-later
// The library on disk: duplicate names, odd files, and the fallback preset when there is no library.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

using Names = std::vector<juce::String>;

TEST (PresetLibrary, DuplicateNamesAreNumberedInPathOrderAndWrittenBackOnce)
{
    ScopedTempHome home;
    const auto lib = home.library();
    writePresetFile (lib.getChildFile ("3.xml"), "Pad", "t", "a");
    writePresetFile (lib.getChildFile ("1.xml"), "Pad", "t", "a");
    writePresetFile (lib.getChildFile ("sub/2.xml"), "Pad", "t", "a");
    writePresetFile (lib.getChildFile ("4.xml"), "Lead");
    const auto untouched = snapshotFiles (lib);

    TestProcessor t;
    auto& manager = t.processor->presetManager;
    EXPECT_EQ (namesOf (manager.getPresets()), (Names { "Pad", "Pad (2)", "Lead", "Pad (3)" }));

    // Only the two renamed files changed on disk, and they now carry the new names.
    const auto afterFirstScan = snapshotFiles (lib);
    EXPECT_EQ (afterFirstScan.at ("1.xml"), untouched.at ("1.xml"));
    EXPECT_EQ (afterFirstScan.at ("4.xml"), untouched.at ("4.xml"));
    EXPECT_NE (afterFirstScan.at ("3.xml"), untouched.at ("3.xml"));
    EXPECT_NE (afterFirstScan.at ("sub/2.xml"), untouched.at ("sub/2.xml"));
    EXPECT_EQ (afterFirstScan.size(), untouched.size());
    EXPECT_EQ (velkaro::Preset (*juce::XmlDocument::parse (lib.getChildFile ("sub/2.xml")), {}).name, "Pad (3)");
    EXPECT_EQ (velkaro::Preset (*juce::XmlDocument::parse (lib.getChildFile ("3.xml")), {}).name, "Pad (2)");

    // The next scan finds distinct names and writes nothing.
    manager.reload();
    EXPECT_EQ (namesOf (manager.getPresets()), (Names { "Pad", "Pad (2)", "Lead", "Pad (3)" }));
    EXPECT_EQ (snapshotFiles (lib), afterFirstScan);
}

TEST (PresetLibrary, OddFilesAreSkippedOrLoadedWithoutHarm)
{
    ScopedTempHome home;
    const auto lib = home.library();
    lib.createDirectory();
    lib.getChildFile ("empty.xml").create();
    lib.getChildFile ("text.xml").replaceWithText ("this is not xml at all");
    lib.getChildFile ("truncated.xml").replaceWithText ("<ondrivel><PROGRAM NAME=\"cut\"/><PARAM id=\"octave\" val");
    juce::MemoryBlock noise (4096);
    juce::Random random (7);
    random.fillBitsRandomly (noise.getData(), noise.getSize());
    lib.getChildFile ("binary.xml").replaceWithData (noise.getData(), noise.getSize());
    lib.getChildFile ("unreadable.xml").replaceWithText ("<ondrivel><PROGRAM NAME=\"locked\"/></ondrivel>");
    lib.getChildFile ("unreadable.xml").setReadOnly (true);
    ::chmod (lib.getChildFile ("unreadable.xml").getFullPathName().toRawUTF8(), 0);
    lib.getChildFile ("folder.xml").createDirectory();
    lib.createSymbolicLink (lib.getChildFile ("loop"), true); // a folder that contains itself
    {
        juce::FileOutputStream huge (lib.getChildFile ("huge.xml"));
        huge << "<ondrivel><PROGRAM NAME=\"huge\"/><NOTES TEXT=\"";
        const juce::String block = juce::String::repeatedString ("x", 1 << 20);
        for (int i = 0; i < 9; ++i)
            huge << block;
        huge << "\"/></ondrivel>";
    }
    lib.getChildFile ("other-root.xml").replaceWithText ("<something><PROGRAM NAME=\"other root\"/></something>");
    writePresetFile (lib.getChildFile ("odd-values.xml"), "odd values", {}, {},
                     { { "octave", "7.5" }, { "time", "-300" }, { "pitch", "banana" }, { "tilt", "nan" },
                       { "volume", "1e300" }, { "decay", "" } });
    auto missing = makePresetXml ("missing params", {}, {});
    missing->deleteAllChildElementsWithTagName ("PARAM");
    missing->createNewChildElement ("PARAM")->setAttribute ("id", "unknown-id");
    missing->writeTo (lib.getChildFile ("missing.xml"), velkaro::Preset::fileFormat());

    const auto before = snapshotFiles (lib);
    TestProcessor t;
    auto& manager = t.processor->presetManager;
    const bool rootCanReadAnything = lib.getChildFile ("unreadable.xml").loadFileAsString().isNotEmpty();
    Names expected { "missing params", "odd values", "other root" };
    if (rootCanReadAnything)
        expected.push_back ("locked");
    auto names = namesOf (manager.getPresets());
    std::sort (names.begin(), names.end());
    std::sort (expected.begin(), expected.end());
    EXPECT_EQ (names, expected);
    EXPECT_EQ (snapshotFiles (lib), before) << "a scan of distinct names writes nothing";

    // Every listed preset loads, and every parameter ends inside its range.
    for (size_t i = 0; i < manager.getVisibleCount(); ++i)
    {
        manager.selectPreset (i);
        for (const auto& row : parameterTable)
        {
            const float v = t.processor->getParameterValue (row.index);
            EXPECT_TRUE (std::isfinite (v)) << row.id;
            EXPECT_GE (v, (float) row.min) << row.id;
            EXPECT_LE (v, (float) row.max) << row.id;
        }
    }
    ::chmod (lib.getChildFile ("unreadable.xml").getFullPathName().toRawUTF8(), 0644);
}

TEST (PresetLibrary, AnEmptyOrUnmakeableLibraryListsOneInitPresetAndWritesNothing)
{
    struct Case { const char* what; std::function<void (const juce::File& home)> prepare; };
    const Case cases[] = {
        { "empty library", [] (const juce::File&) {} },
        { "music folder is a file", [] (const juce::File& h) { h.getChildFile ("Music").replaceWithText ("x"); } },
        { "library is a file", [] (const juce::File& h) { h.getChildFile ("Music").createDirectory();
                                                          h.getChildFile ("Music/ondrivel").replaceWithText ("x"); } },
        { "home is read-only", [] (const juce::File& h) { ::chmod (h.getFullPathName().toRawUTF8(), 0555); } },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.what);
        ScopedTempHome home;
        c.prepare (home.folder);
        {
            TestProcessor t;
            auto& manager = t.processor->presetManager;
            ASSERT_EQ (manager.getNumPresets(), 1u);
            EXPECT_EQ (manager.getPresets()[0]->name, "[init]");
            EXPECT_EQ (manager.getPresets()[0]->file, juce::File());
            manager.selectNext();
            EXPECT_EQ (manager.getCurrentPreset(), manager.getPresets()[0]);
            EXPECT_TRUE (home.library().findChildFiles (juce::File::findFiles, true).isEmpty()) << "the fallback preset is never written";
        }
        ::chmod (home.folder.getFullPathName().toRawUTF8(), 0755);
    }
}
