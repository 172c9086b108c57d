// SPDX-License-Identifier: AGPL-3.0-or-later
// Help lines of the panel's controls, looked up by parameter id (or "tap").
#pragma once

#include <juce_core/juce_core.h>

extern const char* const controlHelpText;

// The help text of one id, from its first "-" on; a fixed hint where the id has no line.
juce::String getHelpFor (const juce::String& id);
