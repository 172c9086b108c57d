// SPDX-License-Identifier: AGPL-3.0-or-later
// The left column of the preset browser: every type and every author of the library, multi-selectable.
#pragma once

#include <functional>
#include <memory>

#include <juce_gui_basics/juce_gui_basics.h>

#include "presets/FilterTreeHeading.h"
#include "presets/PresetManager.h"

namespace velkaro
{
class FilterTree : public juce::Component
{
public:
    explicit FilterTree (PresetManager& presetManager);
    ~FilterTree() override;

    // Rebuilds both lists from the library; no row is selected afterwards.
    void reload();

    void resized() override;

    std::function<void (bool, juce::String&)> onTypeFilterChanged = [] (bool, juce::String&) {};
    std::function<void (bool, juce::String&)> onAuthorFilterChanged = [] (bool, juce::String&) {};

    juce::TreeView tree;
    std::unique_ptr<FilterTreeHeading> root;

private:
    PresetManager& manager;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (FilterTree)
};
} // namespace velkaro
