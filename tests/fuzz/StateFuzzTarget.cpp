// SPDX-License-Identifier: AGPL-3.0-or-later
// Fuzz target: arbitrary bytes as the state block a host hands back, both raw and framed as the
// text of a well-formed block, so the XML reader and the parameter tree get the damaged text.
#include "fuzz/FuzzedProcessor.h"

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& fuzzed = FuzzedProcessor::get();
    auto& processor = fuzzed.processor();

    processor.setStateInformation (data, (int) juce::jmin (size, (std::size_t) 1 << 20));
    fuzzed.checkAfterInput();

    const auto framed = FuzzedProcessor::frameAsStateBlock (data, size);
    processor.setStateInformation (framed.getData(), (int) framed.getSize());
    fuzzed.checkAfterInput();
    return 0;
}
