// SPDX-License-Identifier: AGPL-3.0-or-later
// Centred and only slightly squeezable, so long names shrink a little before they are cut.
#include "editor/NameDisplay.h"

namespace velkaro
{
NameDisplay::NameDisplay (const juce::String& text) : juce::Label ({}, text)
{
    setJustificationType (juce::Justification::centred);
    setFont (juce::FontOptions (12.5f));
    setMinimumHorizontalScale (0.9f);
}
} // namespace velkaro
