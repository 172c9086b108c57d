// SPDX-License-Identifier: AGPL-3.0-or-later
// The library on disk: scan order, duplicate names, the fallback preset, odd files, filters and stepping.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

using Names = std::vector<juce::String>;

TEST (PresetLibrary, ScansSubFoldersInNaturalCaseInsensitivePathOrder)
{
    ScopedTempHome home;
    const auto lib = home.library();
    writePresetFile (lib.getChildFile ("b/Preset10.xml"), "b10");
    writePresetFile (lib.getChildFile ("b/preset9.xml"), "b9");
    writePresetFile (lib.getChildFile ("B/Preset2.xml"), "B2");
    writePresetFile (lib.getChildFile ("a.xml"), "a");
    writePresetFile (lib.getChildFile ("deep/er/still/Z.xml"), "z");
    writePresetFile (lib.getChildFile ("C.xml"), "C");
    writePresetFile (lib.getChildFile ("not-a-preset.txt"), "ignored");
    writePresetFile (lib.getChildFile ("upper.XML"), "ignored too");

    TestProcessor t;
    auto& manager = t.processor->presetManager;
    // "B/" and "b/" compare equal, so their files interleave by their own names: 2, 9, 10.
    EXPECT_EQ (namesOf (manager.getPresets()), (Names { "a", "B2", "b9", "b10", "C", "z" }));
    EXPECT_EQ (manager.getVisibleCount(), 6u);
}

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

TEST (PresetLibrary, AnEmptyLibraryStillListsOneInitPresetWithoutAFile)
{
    ScopedTempHome home;
    TestProcessor t;
    auto& manager = t.processor->presetManager;
    ASSERT_EQ (manager.getNumPresets(), 1u);
    const auto* only = manager.getPresets()[0];
    EXPECT_EQ (only->name, "[init]");
    EXPECT_EQ (only->file, juce::File());
    EXPECT_TRUE (manager.types.count ({}) == 1 && manager.authors.count ({}) == 1);
    EXPECT_TRUE (home.library().isDirectory());
    EXPECT_TRUE (home.library().findChildFiles (juce::File::findFilesAndDirectories, true).isEmpty())
        << "the fallback preset is never written";
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

TEST (PresetLibrary, FiltersAreTheUnionOfTypesAndAuthorsSortedByName)
{
    ScopedTempHome home;
    const auto lib = home.library();
    writePresetFile (lib.getChildFile ("1.xml"), "zeta", "Pad", "Ann");
    writePresetFile (lib.getChildFile ("2.xml"), "Alpha", "Bass", "Bob");
    writePresetFile (lib.getChildFile ("3.xml"), "beta 10", "Pad", "Bob");
    writePresetFile (lib.getChildFile ("4.xml"), "beta 9", "Lead", "Cy");
    writePresetFile (lib.getChildFile ("5.xml"), "ALPHA", "Lead", "Ann");
    writePresetFile (lib.getChildFile ("6.xml"), "plain", "", "");

    TestProcessor t;
    auto& manager = t.processor->presetManager;
    EXPECT_EQ (manager.types, (std::set<juce::String> { "", "Bass", "Lead", "Pad" }));
    EXPECT_EQ (manager.authors, (std::set<juce::String> { "", "Ann", "Bob", "Cy" }));

    struct Case { std::set<juce::String> types, authors; Names expected; };
    const Case cases[] = {
        { { "Pad" }, {}, { "beta 10", "zeta" } },
        { {}, { "Bob" }, { "Alpha", "beta 10" } },
        // "Alpha" and "ALPHA" compare equal by name: the one inserted first stays, types before authors.
        { { "Lead" }, { "Bob" }, { "ALPHA", "beta 9", "beta 10" } },
        { { "Bass", "Lead" }, {}, { "Alpha", "beta 9" } },
        { { "" }, {}, { "plain" } },
        { { "nobody uses this" }, {}, {} },
        { {}, {}, { "zeta", "Alpha", "beta 10", "beta 9", "ALPHA", "plain" } },
    };
    for (const auto& c : cases)
    {
        manager.setFilter ({ c.types, c.authors });
        EXPECT_EQ (namesOf (manager.getPresets()), c.expected);
        EXPECT_EQ (manager.getVisibleCount(), c.expected.size());
        EXPECT_EQ (manager.hasActiveFilter(), ! (c.types.empty() && c.authors.empty()));
        EXPECT_FALSE (manager.hasSelection());
        EXPECT_FALSE (manager.getSelection().hasProperty ("index"));
    }
}

TEST (PresetLibrary, NextAndPreviousWrapAroundInsideTheListInForce)
{
    ScopedTempHome home;
    const auto lib = home.library();
    writePresetFile (lib.getChildFile ("1.xml"), "a", "Pad", "", { { "timbre", "0.1" } });
    writePresetFile (lib.getChildFile ("2.xml"), "b", "Bass", "", { { "timbre", "0.2" } });
    writePresetFile (lib.getChildFile ("3.xml"), "c", "Pad", "", { { "timbre", "0.3" } });
    writePresetFile (lib.getChildFile ("4.xml"), "d", "Pad", "", { { "timbre", "0.4" } });

    TestProcessor t;
    auto& manager = t.processor->presetManager;
    Names loaded;
    manager.onPresetChange = [&] (const velkaro::Preset* p) { loaded.push_back (p->name); };

    // Unfiltered: previous with nothing selected goes to the last entry, then steps wrap both ways.
    manager.selectPrevious();
    manager.selectNext();
    manager.selectNext();
    manager.selectPrevious();
    manager.selectPrevious();
    EXPECT_EQ (loaded, (Names { "d", "a", "b", "a", "d" }));
    EXPECT_EQ ((int) t.processor->selection["index"], 3) << "the table sees the processor's selection tree";
    EXPECT_FLOAT_EQ (t.processor->getParameterValue (ParameterIndex::timbre), 0.4f);

    // Under a filter the index counts in the filtered list; clearing the selection keeps the filter.
    loaded.clear();
    manager.setFilter ({ { "Pad" }, {} });
    manager.selectNext();
    manager.selectNext();
    manager.selectNext();
    manager.selectNext();
    manager.clearSelection();
    EXPECT_TRUE (manager.hasActiveFilter());
    manager.selectPrevious();
    manager.selectPreset (1);
    manager.selectPreset (3); // out of range of the filtered list: nothing happens
    EXPECT_EQ (loaded, (Names { "a", "c", "d", "a", "d", "c" }));
    EXPECT_EQ (manager.getCurrentIndex(), 1u);

    // A reload keeps the filter but drops the selection.
    manager.reload();
    EXPECT_TRUE (manager.hasActiveFilter());
    EXPECT_EQ (namesOf (manager.getPresets()), (Names { "a", "c", "d" }));
    EXPECT_FALSE (manager.hasSelection());
    EXPECT_EQ (manager.getCurrentProgram().preset, nullptr);
    manager.selectNext();
    EXPECT_EQ (loaded.back(), "a");

    // An empty list in force changes nothing.
    manager.setFilter ({ { "no such type" }, {} });
    loaded.clear();
    manager.selectNext();
    manager.selectPrevious();
    EXPECT_TRUE (loaded.empty());
    EXPECT_FALSE (manager.hasSelection());
}
