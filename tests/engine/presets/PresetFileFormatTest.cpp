// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset record and its file: text fields in and out of trees and files, and the exact text written.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"
#include "presets/PresetIds.h"
#include "presets/PresetInfo.h"

using velkaro::Preset;
using velkaro::PresetInfo;

namespace
{
juce::String fileText (const juce::File& f) { return f.loadFileAsString(); }

std::unique_ptr<Preset> readBack (const juce::File& f)
{
    auto xml = juce::XmlDocument::parse (f);
    return xml != nullptr ? std::make_unique<Preset> (*xml, f) : nullptr;
}

juce::StringArray childTags (const juce::XmlElement& xml)
{
    juce::StringArray tags;
    for (auto* child : xml.getChildIterator())
        tags.add (child->getTagName());
    return tags;
}
} // namespace

TEST (PresetFile, WritesCrLfLinesWrappedAtSixtyColumnsAndReadsBackTheSameRecord)
{
    ScopedTempHome home;
    const auto file = home.folder.getChildFile ("a.xml");
    Preset preset (*makePresetXml ("Old", "Pad", "Ann"), file);
    const juce::String longNotes = juce::String::repeatedString ("long notes ", 20);
    preset.updateInfoAndSave ({ "A rather long preset name to force wrapping", "Someone", "Keys", longNotes });

    const auto text = fileText (file);
    EXPECT_TRUE (text.startsWith ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n<ondrivel>\r\n  <PROGRAM NAME="));
    EXPECT_TRUE (text.endsWith ("</ondrivel>\r\n"));
    EXPECT_FALSE (text.replace ("\r\n", "").containsChar ('\n')) << "every line ends in CR LF";
    // The three PROGRAM attributes pass 60 columns, so the third one starts a new, aligned line.
    EXPECT_TRUE (text.contains ("\r\n           AUTHOR=\"Someone\"/>")) << text;

    const auto back = readBack (file);
    ASSERT_NE (back, nullptr);
    EXPECT_EQ (back->name, "A rather long preset name to force wrapping");
    EXPECT_EQ (back->author, "Someone");
    EXPECT_EQ (back->type, "Keys");
    EXPECT_EQ (back->notes, longNotes);
    EXPECT_TRUE (back->isEquivalentTo (&preset, false));
    EXPECT_EQ (childTags (*back)[0], "PROGRAM");
    EXPECT_EQ (childTags (*back).size(), 32);

    // Writing the record again produces the same bytes.
    back->updateInfoAndSave (back->getInfo());
    EXPECT_EQ (fileText (file), text);
}

TEST (PresetFile, TextFieldsSurviveSpecialCharactersAndEmptyValues)
{
    ScopedTempHome home;
    const juce::String cases[] = { "a<b>&\"c'd", "two\nlines\r\nhere", juce::CharPointer_UTF8 ("Gr\xc3\xbc\xc3\x9f" "e \xe2\x99\xab"),
                                   "", "   ", "[init]" };
    for (const auto& text : cases)
    {
        const auto file = home.folder.getChildFile ("special.xml");
        Preset preset (*makePresetXml ("x", "y", "z"), file);
        preset.updateInfoAndSave ({ text, text, text, text });
        const auto back = readBack (file);
        ASSERT_NE (back, nullptr) << text;
        EXPECT_EQ (back->name, text);
        EXPECT_EQ (back->author, text);
        EXPECT_EQ (back->type, text);
        EXPECT_EQ (back->notes, text);
        // An empty field is written as an empty attribute, not dropped.
        EXPECT_TRUE (back->getChildByName ("PROGRAM")->hasAttribute ("AUTHOR"));
        EXPECT_TRUE (back->getChildByName ("NOTES")->hasAttribute ("TEXT"));
    }
}

TEST (PresetFile, MissingMetadataFallsBackToInitAndEmptyFields)
{
    struct Case { const char* xml; const char* name; const char* type; const char* author; const char* notes; };
    const Case cases[] = {
        { "<ondrivel/>", "[init]", "", "", "" },
        { "<x><PROGRAM/></x>", "[init]", "", "", "" },
        { "<x><PROGRAM NAME=\"\"/></x>", "", "", "", "" },
        { "<x><NOTES/><PROGRAM TYPE=\"t\"/></x>", "[init]", "t", "", "" },
        { "<x><PROGRAM NAME=\"n\" AUTHOR=\"a\"/><NOTES TEXT=\"hi\"/><PROGRAM NAME=\"second\"/></x>", "n", "", "a", "hi" },
    };
    for (const auto& c : cases)
    {
        const auto xml = juce::parseXML (c.xml);
        ASSERT_NE (xml, nullptr);
        const Preset preset (*xml, {});
        EXPECT_EQ (preset.name, c.name) << c.xml;
        EXPECT_EQ (preset.type, c.type) << c.xml;
        EXPECT_EQ (preset.author, c.author) << c.xml;
        EXPECT_EQ (preset.notes, c.notes) << c.xml;

        const auto info = velkaro::readInfo (juce::ValueTree::fromXml (*xml));
        EXPECT_EQ (info.name, c.name) << c.xml;
        EXPECT_EQ (info.type, c.type) << c.xml;
        EXPECT_EQ (info.author, c.author) << c.xml;
        EXPECT_EQ (info.notes, c.notes) << c.xml;
    }
}

TEST (PresetFile, RewritingPutsProgramFirstAndLeavesNotesWhereItWas)
{
    ScopedTempHome home;
    const auto file = home.folder.getChildFile ("order.xml");
    const auto xml = juce::parseXML ("<ondrivel><PARAM id=\"octave\" value=\"0.25\"/><NOTES TEXT=\"n\"/>"
                                     "<PARAM id=\"up\" value=\"1\"/><PROGRAM NAME=\"p\"/></ondrivel>");
    Preset preset (*xml, file);
    EXPECT_EQ (preset.name, "p");
    EXPECT_EQ (preset.notes, "n");
    preset.updateInfoAndSave (preset.getInfo());
    EXPECT_EQ (childTags (preset), juce::StringArray ({ "PROGRAM", "PARAM", "NOTES", "PARAM" }));
    EXPECT_EQ (childTags (*readBack (file)), juce::StringArray ({ "PROGRAM", "PARAM", "NOTES", "PARAM" }));
}

TEST (PresetFile, WithInfoNeverDuplicatesMetadataAndLeavesTheSourceAlone)
{
    auto tree = juce::ValueTree::fromXml (*makePresetXml ("a", "b", "c"));
    const auto before = tree.toXmlString();
    auto once = velkaro::withInfo ({ "n1", "a1", "t1", "x1" }, tree);
    auto twice = velkaro::withInfo ({ "n2", "a2", "t2", "x2" }, once);
    EXPECT_EQ (tree.toXmlString(), before);
    int programs = 0, notes = 0;
    for (const auto& child : twice)
    {
        programs += child.hasType ("PROGRAM");
        notes += child.hasType ("NOTES");
    }
    EXPECT_EQ (programs, 1);
    EXPECT_EQ (notes, 1);
    const auto info = velkaro::readInfo (twice);
    EXPECT_EQ (info.name, "n2");
    EXPECT_EQ (info.author, "a2");
    EXPECT_EQ (info.type, "t2");
    EXPECT_EQ (info.notes, "x2");

    // A bare state gets PROGRAM in front and NOTES at the end, with attributes in NAME, TYPE, AUTHOR order.
    juce::ValueTree bare ("ondrivel");
    bare.appendChild (juce::ValueTree ("PARAM"), nullptr);
    const auto made = velkaro::withInfo ({ "n", "a", "t", "x" }, bare);
    ASSERT_EQ (made.getNumChildren(), 3);
    EXPECT_TRUE (made.getChild (0).hasType ("PROGRAM"));
    EXPECT_TRUE (made.getChild (2).hasType ("NOTES"));
    EXPECT_EQ (made.getChild (0).getPropertyName (0).toString(), "NAME");
    EXPECT_EQ (made.getChild (0).getPropertyName (1).toString(), "TYPE");
    EXPECT_EQ (made.getChild (0).getPropertyName (2).toString(), "AUTHOR");

    EXPECT_FALSE (velkaro::withInfo ({}, juce::ValueTree()).isValid());
}
