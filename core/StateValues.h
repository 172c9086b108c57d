// SPDX-License-Identifier: AGPL-3.0-or-later
// Guards the parameter tree against stored values that are not numbers, before a tree from a host's
// project or a preset file is installed.
#pragma once

#include <juce_data_structures/juce_data_structures.h>

// Removes every "value" of a child of `state` that reads as NaN ("nan" in the text). The framework's
// range clamp lets NaN through to the parameter, and from there into the audio; without the
// property the parameter takes its default, as it does for a missing child.
void removeNaNValues (juce::ValueTree& state);
