// SPDX-License-Identifier: AGPL-3.0-or-later
#include "core/XmlText.h"

#include <cstring>
#include <limits>
#include <string>

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

void appendUtf8 (std::string& out, juce::uint32 c)
{
    if (c < 0x80)
        out += (char) c;
    else if (c < 0x800)
    {
        out += (char) (0xc0 | (c >> 6));
        out += (char) (0x80 | (c & 0x3f));
    }
    else if (c < 0x10000)
    {
        out += (char) (0xe0 | (c >> 12));
        out += (char) (0x80 | ((c >> 6) & 0x3f));
        out += (char) (0x80 | (c & 0x3f));
    }
    else
    {
        out += (char) (0xf0 | (c >> 18));
        out += (char) (0x80 | ((c >> 12) & 0x3f));
        out += (char) (0x80 | ((c >> 6) & 0x3f));
        out += (char) (0x80 | (c & 0x3f));
    }
}

// UTF-16 behind its byte-order mark, up to the first U+0000; empty when a surrogate is unpaired, which
// the strict check then refuses. A last odd byte is no character and is left out.
std::string utf16ToUtf8 (const unsigned char* bytes, std::size_t size, bool bigEndian)
{
    const auto unitAt = [bytes, bigEndian] (std::size_t i) -> juce::uint32
    { return bigEndian ? (juce::uint32) (bytes[i] << 8 | bytes[i + 1]) : (juce::uint32) (bytes[i + 1] << 8 | bytes[i]); };

    std::string out;
    for (std::size_t i = 0; i + 1 < size; i += 2)
    {
        auto c = unitAt (i);
        if (c == 0)
            break;
        if (c >= 0xdc00 && c <= 0xdfff)
            return {};
        if (c >= 0xd800 && c <= 0xdbff)
        {
            if (i + 3 >= size)
                return {};
            const auto low = unitAt (i + 2);
            if (low < 0xdc00 || low > 0xdfff)
                return {};
            c = 0x10000 + ((c - 0xd800) << 10) + (low - 0xdc00);
            i += 2;
        }
        appendUtf8 (out, c);
    }
    return out;
}

// Windows-1252 from 0x80 to 0x9f; its five unassigned bytes keep their Latin-1 code points.
constexpr juce::uint16 windows1252High[32] = { 0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,
                                               0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008d, 0x017d, 0x008f,
                                               0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                               0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178 };

std::string windows1252ToUtf8 (const unsigned char* text, std::size_t length)
{
    std::string out;
    out.reserve (length + length / 4);
    for (std::size_t i = 0; i < length; ++i)
    {
        const unsigned c = text[i];
        appendUtf8 (out, c >= 0x80 && c < 0xa0 ? windows1252High[c - 0x80] : c);
    }
    return out;
}

// Whether the XML declaration names an 8-bit Windows or Latin-1 encoding; such text is read as
// Windows-1252 even where its bytes would pass for UTF-8.
bool declaresEightBitText (const char* text, std::size_t length)
{
    std::string declaration;
    for (std::size_t i = 0; i < length && i < 200 && (unsigned char) text[i] < 0x80; ++i)
        declaration += text[i];
    if (declaration.rfind ("<?xml", 0) != 0)
        return false;
    const auto end = declaration.find ("?>");
    if (end == std::string::npos)
        return false;
    const auto value = juce::String (declaration.substr (0, end))
                           .fromFirstOccurrenceOf ("encoding", false, false)
                           .fromFirstOccurrenceOf ("=", false, false)
                           .trimStart();
    const auto encoding = value.substring (1).upToFirstOccurrenceOf (value.substring (0, 1), false, false).toLowerCase();
    return encoding.contains ("1252") || encoding.startsWith ("iso-8859-1") || encoding.startsWith ("iso8859-1")
           || encoding.startsWith ("latin");
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

juce::String fromFileBytes (const void* data, std::size_t size)
{
    if (data == nullptr || size < 2)
        return fromBytes (data, size);

    const auto* bytes = static_cast<const unsigned char*> (data);
    if ((bytes[0] == 0xff && bytes[1] == 0xfe) || (bytes[0] == 0xfe && bytes[1] == 0xff))
    {
        const auto text = utf16ToUtf8 (bytes + 2, size - 2, bytes[0] == 0xfe);
        return fromBytes (text.data(), text.size());
    }

    // A UTF-8 byte-order mark says what the text is: fromBytes alone decides.
    if (size >= 3 && std::memcmp (bytes, "\xef\xbb\xbf", 3) == 0)
        return fromBytes (data, size);

    const auto* nul = static_cast<const unsigned char*> (std::memchr (bytes, 0, size));
    const auto length = nul != nullptr ? (std::size_t) (nul - bytes) : size;
    if (! declaresEightBitText (static_cast<const char*> (data), length) && isStrictUtf8 (bytes, length))
        return fromBytes (data, length);

    const auto text = windows1252ToUtf8 (bytes, length);
    return fromBytes (text.data(), text.size());
}

juce::String readFile (const juce::File& file)
{
    juce::MemoryBlock bytes;
    if (! file.loadFileAsData (bytes))
        return {};
    return fromFileBytes (bytes.getData(), bytes.getSize());
}

std::unique_ptr<juce::XmlElement> parse (const void* data, std::size_t size, juce::String* whyNot)
{
    return parseText (fromBytes (data, size), whyNot);
}

std::unique_ptr<juce::XmlElement> parseFileBytes (const void* data, std::size_t size, juce::String* whyNot)
{
    return parseText (fromFileBytes (data, size), whyNot);
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
