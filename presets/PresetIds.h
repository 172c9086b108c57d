// SPDX-License-Identifier: AGPL-3.0-or-later
// Names shared by the preset files, the state tree and the preset panels, made once per process.
#pragma once

#include <juce_core/juce_core.h>
#include <juce_data_structures/juce_data_structures.h>

namespace velkaro::PresetIds
{
inline const juce::Identifier program { "PROGRAM" };
inline const juce::Identifier notes { "NOTES" };
inline const juce::Identifier name { "NAME" };
inline const juce::Identifier type { "TYPE" };
inline const juce::Identifier author { "AUTHOR" };
inline const juce::Identifier text { "TEXT" };

inline const juce::String defaultName { "[init]" };
inline const juce::String fileSuffix { ".xml" };
} // namespace velkaro::PresetIds
