// SPDX-License-Identifier: AGPL-3.0-or-later
// The four settings shared by every instance (tooltips, window width and two stored flags), kept in
// a small XML file beside the plug-in's data folder, and where the background pictures are found.
#pragma once

#include <juce_core/juce_core.h>

struct GlobalSettings
{
    int showTooltips = 1;
    int windowWidth = 880;
    int useOpenGL = 0;
    int setColours = 0;
    juce::String dataFolder;

    // Reads the file into the record; a record without a data folder stays as it is.
    void read();
    // Writes the four values; false when the file could not be written. Does nothing without a data folder.
    bool write() const;

    juce::File getFile() const { return juce::File (dataFolder + "Settings.xml"); }
};

// The resources folder of the plug-in or program that holds this code (VST3, LV2 or standalone).
juce::File bundleResourcesFolder();

// The text file that remembers the chosen background picture.
juce::File savedBackgroundFile();
