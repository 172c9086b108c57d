// SPDX-License-Identifier: AGPL-3.0-or-later
#include "core/XmlText.h"

#include <cstring>
#include <limits>

namespace velkaro::XmlText
{
namespace
{
// Every sequence well formed: continuation bytes where the lead byte promises them (so stepping
// over a character never steps over the terminator), no overlong forms, no surrogates, nothing
// past U+10FFFF. The framework's own check looks at value ranges only.
bool isStrictUtf8 (const unsigned char* text, std::size_t length)
{
    for (std::size_t i = 0; i < length;)
    {
        const unsigned lead = text[i];
        if (lead < 0x80)
        {
            ++i;
            continue;
        }

        std::size_t extra = 0;
        unsigned lowest = 0x80, highest = 0xbf; // allowed range of the first continuation byte
        if (lead >= 0xc2 && lead <= 0xdf)
            extra = 1;
        else if (lead >= 0xe0 && lead <= 0xef)
        {
            extra = 2;
            if (lead == 0xe0) lowest = 0xa0;
            if (lead == 0xed) highest = 0x9f;
        }
        else if (lead >= 0xf0 && lead <= 0xf4)
        {
            extra = 3;
            if (lead == 0xf0) lowest = 0x90;
            if (lead == 0xf4) highest = 0x8f;
        }
        else
            return false;

        if (length - i <= extra)
            return false;
        for (std::size_t k = 1; k <= extra; ++k)
        {
            const unsigned c = text[i + k];
            const auto low = k == 1 ? lowest : 0x80u;
            const auto high = k == 1 ? highest : 0xbfu;
            if (c < low || c > high)
                return false;
        }
        i += extra + 1;
    }
    return true;
}
} // namespace

juce::String fromBytes (const void* data, std::size_t size)
{
    if (data == nullptr || size == 0)
        return {};

    // A byte-order mark is not part of the text.
    auto* text = static_cast<const char*> (data);
    if (size >= 3 && std::memcmp (text, "\xef\xbb\xbf", 3) == 0)
    {
        text += 3;
        size -= 3;
    }
    const auto* nul = static_cast<const char*> (std::memchr (text, 0, size));
    const auto length = nul != nullptr ? (std::size_t) (nul - text) : size;
    if (length == 0 || length > (std::size_t) std::numeric_limits<int>::max())
        return {};

    if (! isStrictUtf8 (reinterpret_cast<const unsigned char*> (text), length))
        return {};
    return juce::String::fromUTF8 (text, (int) length);
}

namespace
{
std::unique_ptr<juce::XmlElement> parseText (const juce::String& text, juce::String* whyNot)
{
    const auto refuse = [whyNot] (const char* reason) -> std::unique_ptr<juce::XmlElement>
    {
        if (whyNot != nullptr)
            *whyNot = reason;
        return nullptr;
    };
    if (text.isEmpty())
        return refuse ("no UTF-8 text");

    // The parser never leaves a processing instruction that stands among an element's children
    // when text follows it. Our files have none beyond the declaration at the top, so any other
    // makes the text unreadable.
    auto body = text.trimStart();
    if (body.startsWith ("<?"))
        body = body.fromFirstOccurrenceOf ("?>", false, false);
    if (body.contains ("<?"))
        return refuse ("processing instruction inside the document");

    juce::XmlDocument document (text);
    auto xml = document.getDocumentElement();
    if (xml == nullptr && whyNot != nullptr)
        *whyNot = document.getLastParseError();
    return xml;
}
} // namespace

juce::String readFile (const juce::File& file)
{
    juce::MemoryBlock bytes;
    if (! file.loadFileAsData (bytes))
        return {};
    return fromBytes (bytes.getData(), bytes.getSize());
}

std::unique_ptr<juce::XmlElement> parse (const void* data, std::size_t size, juce::String* whyNot)
{
    return parseText (fromBytes (data, size), whyNot);
}

std::unique_ptr<juce::XmlElement> parse (const juce::File& file, juce::String* whyNot)
{
    return parseText (readFile (file), whyNot);
}

std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes)
{
    // The framework's layout: a magic number, the text's length, then the text.
    constexpr juce::uint32 magicXmlNumber = 0x21324356;
    if (data == nullptr || sizeInBytes <= 8 || juce::ByteOrder::littleEndianInt (data) != magicXmlNumber)
        return nullptr;

    const auto stringLength = (int) juce::ByteOrder::littleEndianInt (juce::addBytesToPointer (data, 4));
    if (stringLength <= 0)
        return nullptr;
    return parse (juce::addBytesToPointer (data, 8), (std::size_t) juce::jmin (sizeInBytes - 8, stringLength));
}
} // namespace velkaro::XmlText
