// SPDX-License-Identifier: AGPL-3.0-or-later
// Reading a preset record from its document and writing it back with new text fields.
#include "presets/Preset.h"

#include "presets/PresetIds.h"

namespace velkaro
{
Preset::Preset (const juce::XmlElement& document, const juce::File& presetFile)
    : juce::XmlElement (document)
{
    name = PresetIds::defaultName;
    if (const auto* program = getChildByName (PresetIds::program))
    {
        name = program->getStringAttribute (PresetIds::name, PresetIds::defaultName);
        type = program->getStringAttribute (PresetIds::type);
        author = program->getStringAttribute (PresetIds::author);
    }
    if (const auto* notesElement = getChildByName (PresetIds::notes))
        notes = notesElement->getStringAttribute (PresetIds::text);
    file = presetFile;
}

void Preset::updateInfoAndSave (const PresetInfo& info)
{
    name = info.name;
    author = info.author;
    type = info.type;
    notes = info.notes;

    const auto rebuilt = withInfo (info, juce::ValueTree::fromXml (*this)).createXml();
    if (rebuilt == nullptr)
        return;

    juce::XmlElement::operator= (*rebuilt);

    // The result is not examined: the record keeps its new fields even when the disk refuses them.
    writeTo (file, fileFormat());
}

juce::XmlElement::TextFormat Preset::fileFormat()
{
    juce::XmlElement::TextFormat format;
    format.dtd = {};
    format.customHeader = {};
    format.customEncoding = {};
    format.addDefaultHeader = true;
    format.lineWrapLength = 60;
    format.newLineChars = "\r\n";
    return format;
}
} // namespace velkaro
