// SPDX-License-Identifier: AGPL-3.0-or-later
// One preset of the library: the parsed document itself, its four text fields and its file.
#pragma once

#include <juce_core/juce_core.h>

#include "presets/PresetInfo.h"

namespace velkaro
{
class Preset : public juce::XmlElement
{
public:
    // Takes a copy of the document and reads the text fields from its "PROGRAM" and "NOTES" children.
    Preset (const juce::XmlElement& document, const juce::File& file);

    // Replaces the text fields, rebuilds the document around them and rewrites the file as a whole.
    void updateInfoAndSave (const PresetInfo& info);

    PresetInfo getInfo() const { return { name, author, type, notes }; }

    // How every preset file is written: CR LF line ends and wrapping at 60 columns on all platforms.
    static juce::XmlElement::TextFormat fileFormat();

    juce::String name;
    juce::String author;
    juce::String type;
    juce::String notes;
    juce::File file;
};
} // namespace velkaro
