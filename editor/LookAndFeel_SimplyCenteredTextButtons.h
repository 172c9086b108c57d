// SPDX-License-Identifier: AGPL-3.0-or-later
// The look of the preset toolbar: button text centred over the full height.
#pragma once

#include "editor/DromelleLookAndFeel_V1.h"

namespace velkaro
{
class LookAndFeel_SimplyCenteredTextButtons : public DromelleLookAndFeel_V1
{
public:
    void drawButtonText (juce::Graphics&, juce::TextButton&, bool isMouseOverButton, bool isButtonDown) override;
};
} // namespace velkaro
