// SPDX-License-Identifier: AGPL-3.0-or-later
// The printed name above a control.
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace velkaro
{
class NameDisplay : public juce::Label
{
public:
    explicit NameDisplay (const juce::String& text);
};
} // namespace velkaro
