// SPDX-License-Identifier: AGPL-3.0-or-later
// A choice of types and authors; a preset passes when its type or its author is chosen.
#pragma once

#include <set>

#include <juce_core/juce_core.h>

namespace velkaro
{
struct PresetFilter
{
    bool isEmpty() const { return types.empty() && authors.empty(); }

    bool operator== (const PresetFilter& other) const { return types == other.types && authors == other.authors; }
    bool operator!= (const PresetFilter& other) const { return ! operator== (other); }

    std::set<juce::String> types;
    std::set<juce::String> authors;
};
} // namespace velkaro
