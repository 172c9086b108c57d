// SPDX-License-Identifier: AGPL-3.0-or-later
// What an open panel costs when nobody touches it: the bundle's editor shown in a window at a given
// width, nothing playing, and the process's CPU time over a few windows of wall-clock time.
#pragma once

#include <vector>

#include <juce_core/juce_core.h>

class PanelCost
{
public:
    struct Request
    {
        int width = 880;    // 0: the plug-in loaded without opening its panel
        int left = 0;       // the window's position on the screen
        bool frameOnly = false; // a blank window of the panel's size instead of the panel: the host's own share
        int windows = 4;
        double windowSeconds = 2.0;
    };

    struct Result
    {
        int shownWidth = 0;
        std::vector<double> percentOfCore; // one per measuring window
    };

    // Needs an X display. The width is stored in the plug-in's settings file first, as a user who
    // resized the panel last time would have left it.
    static bool measure (const juce::File& bundle, const Request& request, Result& result, juce::String& error);
};
