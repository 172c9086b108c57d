// SPDX-License-Identifier: AGPL-3.0-or-later
// The library on disk: text fields kept whatever they hold, duplicate names, files written elsewhere,
// and the fallback preset when there is no library.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
// The bytes of a literal, NULs inside included.
template <size_t size>
juce::MemoryBlock bytesOf (const char (&text)[size]) { return { text, size - 1 }; }

// The text as UTF-16 behind its byte-order mark, as Windows editors save it.
juce::MemoryBlock utf16 (const juce::String& text, bool bigEndian)
{
    juce::MemoryOutputStream out;
    out.writeShortBigEndian (bigEndian ? (short) 0xfeff : (short) 0xfffe);
    for (auto* unit = text.toUTF16().getAddress(); *unit != 0; ++unit)
        bigEndian ? out.writeShortBigEndian ((short) *unit) : out.writeShort ((short) *unit);
    return out.getMemoryBlock();
}
} // namespace

TEST (PresetLibrary, TextFieldsSurviveSpecialCharactersAndEmptyValues)
{
    ScopedTempHome home;
    const auto file = home.folder.getChildFile ("special.xml");
    const juce::String cases[] = { "a<b>&\"c'd", "two\nlines\r\nhere", juce::CharPointer_UTF8 ("Gr\xc3\xbc\xc3\x9f" "e \xe2\x99\xab"),
                                   "", "   ", "[init]" };
    for (const auto& text : cases)
    {
        velkaro::Preset (*makePresetXml ("x", "y", "z"), file).updateInfoAndSave ({ text, text, text, text });
        const velkaro::Preset back (*juce::XmlDocument::parse (file), file);
        EXPECT_EQ (std::vector<juce::String> ({ back.name, back.author, back.type, back.notes }), std::vector<juce::String> (4, text));
        // An empty field is written as an empty attribute, not dropped.
        EXPECT_TRUE (back.getChildByName ("PROGRAM")->hasAttribute ("AUTHOR") && back.getChildByName ("NOTES")->hasAttribute ("TEXT"));
    }
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
    const std::vector<juce::String> numbered { "Pad", "Pad (2)", "Lead", "Pad (3)" };
    EXPECT_EQ (namesOf (manager.getPresets()), numbered);

    // Only the two renamed files changed on disk, and they now carry the new names.
    const auto afterFirstScan = snapshotFiles (lib);
    for (const char* kept : { "1.xml", "4.xml" })
        EXPECT_EQ (afterFirstScan.at (kept), untouched.at (kept));
    EXPECT_EQ (velkaro::Preset (*juce::XmlDocument::parse (lib.getChildFile ("sub/2.xml")), {}).name, "Pad (3)");
    EXPECT_EQ (velkaro::Preset (*juce::XmlDocument::parse (lib.getChildFile ("3.xml")), {}).name, "Pad (2)");

    // The next scan finds distinct names and writes nothing.
    manager.reload();
    EXPECT_EQ (namesOf (manager.getPresets()), numbered);
    EXPECT_EQ (snapshotFiles (lib), afterFirstScan);
}

TEST (PresetLibrary, FilesFromElsewhereAreListedConvertedOrSkipped)
{
    ScopedTempHome home;
    const auto lib = home.library();
    lib.createDirectory();
    const auto wide = [] (const char* name) // a name with a character beyond 16 bits, a surrogate pair in UTF-16
    { return juce::String ("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<ondrivel><PROGRAM NAME=\"") + juce::String (juce::CharPointer_UTF8 (name)) + "\" TYPE=\"Pad\"/></ondrivel>"; };
    juce::MemoryBlock noise (4096);
    juce::Random (7).fillBitsRandomly (noise.getData(), noise.getSize());

    // A null name: the file is passed over. Else the fields it is listed with.
    struct Case { const char* file; juce::MemoryBlock bytes; const char* name; const char* type = ""; const char* notes = ""; };
    const Case cases[] = {
        { "utf16le.xml", utf16 (wide ("LE \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xb9"), false), "LE \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xb9", "Pad" },
        { "utf16be.xml", utf16 (wide ("BE \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xb9"), true), "BE \xc3\xbc \xe2\x82\xac \xf0\x9f\x8e\xb9", "Pad" },
        { "cp1252.xml", bytesOf ("<ondrivel><PROGRAM NAME=\"Gr\xfc\xdf" "e \x80\"/><NOTES TEXT=\"\x93quoted\x94\"/></ondrivel>"),
          "Gr\xc3\xbc\xc3\x9f" "e \xe2\x82\xac", "", "\xe2\x80\x9cquoted\xe2\x80\x9d" },
        // Declared as Windows text, its bytes are read so even where they would pass for UTF-8.
        { "declared.xml", bytesOf ("<?xml version=\"1.0\" encoding=\"windows-1252\"?><ondrivel><PROGRAM NAME=\"\xc3\xa9t\xe9\"/></ondrivel>"),
          "\xc3\x83\xc2\xa9t\xc3\xa9" },
        { "latin1.xml", bytesOf ("<?xml version='1.0' encoding='ISO-8859-1'?><ondrivel><PROGRAM NAME=\"caf\xe9\"/></ondrivel>"), "caf\xc3\xa9" },
        { "bare.xml", bytesOf ("<ondrivel/>"), "[init]" },
        { "notes-first.xml", bytesOf ("<x><NOTES TEXT=\"hi\"/><PROGRAM NAME=\"notes first\" TYPE=\"t\"/><PROGRAM NAME=\"2nd\"/></x>"),
          "notes first", "t", "hi" },
        { "other-root.xml", bytesOf ("<something><PROGRAM NAME=\"other root\"/></something>"), "other root" },
        { "empty.xml", {}, nullptr },
        { "text.xml", bytesOf ("this is not xml at all"), nullptr },
        { "truncated.xml", bytesOf ("<ondrivel><PROGRAM NAME=\"cut\"/><PARAM id=\"octave\" val"), nullptr },
        { "binary.xml", noise, nullptr },
        { "lone-surrogate.xml", bytesOf ("\xff\xfe<\0a\0\x00\xd8/\0>\0"), nullptr },
        { "instruction.xml", bytesOf ("<ondrivel><PROGRAM NAME=\"pi\"/><?x y?>text</ondrivel>"), nullptr },
    };
    for (const auto& c : cases)
        lib.getChildFile (c.file).replaceWithData (c.bytes.getData(), c.bytes.getSize());
    lib.getChildFile ("folder.xml").createDirectory();
    lib.createSymbolicLink (lib.getChildFile ("loop"), true); // a folder that contains itself
    lib.getChildFile ("huge.xml").replaceWithText ("<ondrivel><PROGRAM NAME=\"huge\"/><NOTES TEXT=\"" + juce::String::repeatedString ("x", 9 << 20)
                                                   + "\"/></ondrivel>");
    const auto before = snapshotFiles (lib);
    TestProcessor t;
    auto& manager = t.processor->presetManager;
    const auto presets = manager.getPresets();
    EXPECT_EQ (presets.size(), 8u);
    for (const auto& c : cases)
    {
        const auto found = std::find_if (presets.begin(), presets.end(), [&] (auto* p) { return p->file.getFileName() == c.file; });
        ASSERT_EQ (found != presets.end(), c.name != nullptr) << c.file;
        if (c.name != nullptr)
            EXPECT_EQ (std::vector<juce::String> ({ (*found)->name, (*found)->type, (*found)->notes }),
                       std::vector<juce::String> ({ juce::String (juce::CharPointer_UTF8 (c.name)), c.type, juce::String (juce::CharPointer_UTF8 (c.notes)) }))
                << c.file;
    }
    EXPECT_EQ (snapshotFiles (lib), before) << "a scan of distinct names writes nothing";

    for (size_t i = 0; i < presets.size(); ++i)
        manager.selectPreset (i); // every listed preset loads
}

TEST (PresetLibrary, AnEmptyOrUnmakeableLibraryListsOneInitPresetAndWritesNothing)
{
    struct Case { const char* what; std::function<void (const juce::File& home)> prepare; };
    const Case cases[] = {
        { "empty library", [] (const juce::File&) {} },
        { "music folder is a file", [] (const juce::File& h) { h.getChildFile ("Music").replaceWithText ("x"); } },
        { "library is a file", [] (const juce::File& h) { h.getChildFile ("Music").createDirectory();
                                                          h.getChildFile ("Music/ondrivel").replaceWithText ("x"); } },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.what);
        ScopedTempHome home;
        c.prepare (home.folder);
        TestProcessor t;
        auto& manager = t.processor->presetManager;
        ASSERT_EQ (manager.getNumPresets(), 1u);
        EXPECT_EQ (manager.getPresets()[0]->name, "[init]");
        EXPECT_EQ (manager.getPresets()[0]->file, juce::File());
        manager.selectNext();
        EXPECT_EQ (manager.getCurrentPreset(), manager.getPresets()[0]);
        EXPECT_TRUE (home.library().findChildFiles (juce::File::findFiles, true).isEmpty()) << "the fallback preset is never written";
    }
}
