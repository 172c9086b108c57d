// SPDX-License-Identifier: AGPL-3.0-or-later
// A 24-pixel toolbar button has no inset, so its text sits one pixel higher than on the panel.
#include "editor/LookAndFeel_SimplyCenteredTextButtons.h"

namespace velkaro
{
void LookAndFeel_SimplyCenteredTextButtons::drawButtonText (juce::Graphics& g, juce::TextButton& button, bool, bool)
{
    const int d = juce::jmin (juce::roundToInt ((float) button.getHeight() * 0.01f), 1);
    drawButtonTextIn (g, button, d, d - 1);
}
} // namespace velkaro
