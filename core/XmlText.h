// SPDX-License-Identifier: AGPL-3.0-or-later
// Reading XML from bytes we did not write ourselves: project states, preset and settings files.
// The framework's string type trusts its bytes to be UTF-8 and its XML parser steps over a
// multi-byte sequence as a whole, so a broken lead byte near the end reads past the buffer.
// Everything here checks the text first and treats broken text as unreadable. Files written
// elsewhere may be UTF-16 with a byte-order mark or 8-bit Windows text: those are made UTF-8 first.
#pragma once

#include <cstddef>
#include <memory>

#include <juce_core/juce_core.h>

namespace velkaro::XmlText
{
// The text up to the first NUL, or an empty string when it is not valid UTF-8.
juce::String fromBytes (const void* data, std::size_t size);

// The text of bytes read from a file: UTF-16 after a byte-order mark, and 8-bit text (bytes that are
// not UTF-8, or a declaration that names Windows-1252 or Latin-1) read as Windows-1252, all made
// UTF-8 before fromBytes checks them. Empty when nothing readable is left.
juce::String fromFileBytes (const void* data, std::size_t size);

// The file's text as fromFileBytes gives it; empty when it cannot be read.
juce::String readFile (const juce::File& file);

// The document element of the bytes as XML text, or null when they are not valid UTF-8 or not XML;
// then `whyNot`, where given, receives the reason.
std::unique_ptr<juce::XmlElement> parse (const void* data, std::size_t size, juce::String* whyNot = nullptr);

// The same for the bytes of a file, which are converted as fromFileBytes does.
std::unique_ptr<juce::XmlElement> parseFileBytes (const void* data, std::size_t size, juce::String* whyNot = nullptr);
std::unique_ptr<juce::XmlElement> parse (const juce::File& file, juce::String* whyNot = nullptr);

// The XML of a block made by AudioProcessor::copyXmlToBinary, or null when it is not one.
std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes);
} // namespace velkaro::XmlText
