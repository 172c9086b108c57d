// SPDX-License-Identifier: AGPL-3.0-or-later
// Fuzz target: arbitrary bytes as the text of a preset file, read the way the library reads one
// (XML document, preset record) and loaded into the processor through the preset manager.
#include "fuzz/FuzzedProcessor.h"

#include "core/XmlText.h"
#include "presets/Preset.h"

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& processor = FuzzedProcessor::get();
    // The manager keeps a pointer to the loaded record until the next state recall detaches it,
    // which checkAfterInput does; so the previous record can go once the next one is made.
    static std::unique_ptr<velkaro::Preset> record;

    if (const auto xml = velkaro::XmlText::parseFileBytes (data, size))
    {
        record = std::make_unique<velkaro::Preset> (*xml, juce::File ("/nonexistent/fuzzed.xml"));
        processor.presetManager.loadPreset (record.get());
    }
    FuzzedProcessor::checkAfterInput();
    return 0;
}
