// SPDX-License-Identifier: AGPL-3.0-or-later
// Fuzz target: arbitrary bytes as the state block a host hands back, both raw and framed as the
// text of a well-formed block (as copyXmlToBinary frames XML), so that mutations reach the XML
// reader and the parameter tree instead of dying at the magic number.
#include "fuzz/FuzzedProcessor.h"

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& processor = FuzzedProcessor::get();
    processor.setStateInformation (data, (int) juce::jmin (size, (std::size_t) 1 << 20));
    FuzzedProcessor::checkAfterInput();

    juce::MemoryOutputStream framed;
    framed.writeInt (0x21324356);
    framed.writeInt ((int) size);
    framed.write (data, size);
    framed.writeByte (0);
    processor.setStateInformation (framed.getData(), (int) framed.getDataSize());
    FuzzedProcessor::checkAfterInput();
    return 0;
}
