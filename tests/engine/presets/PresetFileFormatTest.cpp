// SPDX-License-Identifier: AGPL-3.0-or-later
// The preset record and its file: text fields kept whatever they hold.
#include <gtest/gtest.h>

#include "PresetTestSupport.h"

using velkaro::Preset;

namespace
{
std::unique_ptr<Preset> readBack (const juce::File& f)
{
    auto xml = juce::XmlDocument::parse (f);
    return xml != nullptr ? std::make_unique<Preset> (*xml, f) : nullptr;
}
} // namespace

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
