// SPDX-License-Identifier: AGPL-3.0-or-later
// Fuzz target: arbitrary bytes as the text of a preset file, read the way a preset is loaded: parse
// as XML, make the tree, install it in the parameter tree.
#include "fuzz/FuzzedProcessor.h"

#include "core/StateValues.h"

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& fuzzed = FuzzedProcessor::get();
    auto& processor = fuzzed.processor();

    const auto text = juce::String::fromUTF8 (reinterpret_cast<const char*> (data), (int) size);
    juce::XmlDocument document (text);
    if (const auto xml = document.getDocumentElement())
    {
        auto tree = juce::ValueTree::fromXml (*xml);
        removeNaNValues (tree);
        if (tree.isValid())
            processor.parameters.replaceState (tree);
    }
    fuzzed.checkAfterInput();
    return 0;
}
