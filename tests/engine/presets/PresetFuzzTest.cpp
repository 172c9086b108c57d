// SPDX-License-Identifier: AGPL-3.0-or-later
// Damaged and odd preset files by the thousand: the scan and the loads must neither crash nor let an
// invalid value through, and the only files written are duplicates that get a new name.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "engine/support/TestProcessor.h"

namespace
{
juce::String mutate (juce::String text, juce::Random& random)
{
    const char* values[] = { "nan", "-inf", "1e39", "-5", "banana", "", "0x10", "3.4e38", "-0", "1e-45" };
    const char* names[] = { "Glass Pad", "[init]", "", "a\"b", "Pad (2)", "x/y\\z:*?", "Bell Keys" };
    switch (random.nextInt (8))
    {
        case 0: // flip a few bytes
        {
            auto utf8 = text.toStdString();
            for (int f = random.nextInt (4) + 1; --f >= 0 && ! utf8.empty();)
                utf8[(size_t) random.nextInt ((int) utf8.size())] = (char) random.nextInt (256);
            return juce::String::fromUTF8 (utf8.data(), (int) utf8.size());
        }
        case 1: // cut short
            return text.substring (0, random.nextInt (text.length() + 1));
        case 2: // a value replaced
        {
            const auto start = text.indexOf (random.nextInt (juce::jmax (1, text.length())), "value=\"");
            if (start < 0)
                return text;
            const auto end = text.indexOfChar (start + 7, '"');
            return text.replaceSection (start + 7, end - start - 7, values[random.nextInt (10)]);
        }
        case 3: // the name replaced, often by one already in use
        {
            const auto start = text.indexOf ("NAME=\"");
            if (start < 0)
                return text;
            const auto end = text.indexOfChar (start + 6, '"');
            const juce::String name (names[random.nextInt (7)]);
            return text.replaceSection (start + 6, end - start - 6, name.replace ("\"", "&quot;"));
        }
        case 4: // parameters dropped
            for (int d = random.nextInt (10); --d >= 0;)
            {
                const auto start = text.indexOf (random.nextInt (juce::jmax (1, text.length())), "<PARAM");
                if (start >= 0)
                    text = text.replaceSection (start, text.indexOf (start, "/>") + 2 - start, {});
            }
            return text;
        case 5: // another root, an extra element, duplicated children
            return text.replace ("<ondrivel>", "<other><EXTRA a=\"1\"/><PROGRAM NAME=\"second\"/>").replace ("</ondrivel>", "</other>");
        case 6: // metadata removed
            return text.replace ("<PROGRAM", "<PROGRAMME").replace ("<NOTES", "<NOTE");
        default: // left as it is: a plain duplicate
            return text;
    }
}
} // namespace

TEST (PresetFuzz, AThousandMutatedFilesScanAndLoadSafely)
{
    ScopedTempHome home;
    const auto lib = home.library();
    const auto sources = juce::File (ONDRIVEL_FACTORY_PRESETS_DIR).findChildFiles (juce::File::findFiles, true, "*.xml");
    ASSERT_FALSE (sources.isEmpty());
    juce::Random random (2024);
    TestProcessor t;
    auto& manager = t.processor->presetManager;

    int filesWritten = 0, renamesSeen = 0, presetsLoaded = 0;
    for (int round = 0; round < 20; ++round)
    {
        lib.deleteRecursively();
        lib.createDirectory();
        for (int i = 0; i < 50; ++i)
        {
            const auto source = sources[random.nextInt (sources.size())];
            const auto folder = random.nextBool() ? lib : lib.getChildFile ("sub" + juce::String (random.nextInt (3)));
            folder.createDirectory();
            folder.getChildFile (juce::String (i) + ".xml").replaceWithText (mutate (source.loadFileAsString(), random));
            ++filesWritten;
        }
        const auto before = snapshotFiles (lib);

        manager.reload();

        // A file changed only if it holds a preset whose name the scan changed to make it unique.
        const auto after = snapshotFiles (lib);
        ASSERT_EQ (after.size(), before.size());
        std::map<juce::String, const velkaro::Preset*> byPath;
        for (auto* preset : manager.getPresets())
            byPath[preset->file.getRelativePathFrom (lib)] = preset;
        for (const auto& [path, data] : after)
        {
            if (data == before.at (path))
                continue;
            ++renamesSeen;
            ASSERT_EQ (byPath.count (path), 1u) << path;
            const auto reread = juce::XmlDocument::parse (lib.getChildFile (path));
            ASSERT_NE (reread, nullptr) << path;
            const velkaro::Preset onDisk (*reread, {});
            EXPECT_EQ (onDisk.name, byPath[path]->name);
            EXPECT_TRUE (onDisk.name.endsWith (")")) << onDisk.name;
        }

        for (size_t i = 0; i < manager.getVisibleCount(); ++i)
        {
            manager.selectPreset (i);
            ++presetsLoaded;
            for (const auto& row : parameterTable)
            {
                const float v = t.processor->getParameterValue (row.index);
                ASSERT_TRUE (v >= (float) row.min && v <= (float) row.max)
                    << row.id << " = " << v << " in " << manager.getCurrentPreset()->name;
            }
        }
    }
    RecordProperty ("renamed", renamesSeen);
    RecordProperty ("loaded", presetsLoaded);
    EXPECT_EQ (filesWritten, 1000);
    EXPECT_GT (renamesSeen, 100);
    EXPECT_GT (presetsLoaded, 700);
}
