// SPDX-License-Identifier: AGPL-3.0-or-later
#include "core/StateValues.h"

#include <cmath>

void removeNaNValues (juce::ValueTree& state)
{
    static const juce::Identifier value ("value");
    for (auto child : state)
        if (child.hasProperty (value) && std::isnan ((float) child.getProperty (value)))
            child.removeProperty (value, nullptr);
}
