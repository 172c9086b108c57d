// SPDX-License-Identifier: AGPL-3.0-or-later
// Finds the plug-in bundle's "Contents/Resources" folder from the binary this code was loaded from.
#pragma once

#include <juce_core/juce_core.h>

class BundleResources
{
public:
    // The file of the module that holds this code: the plug-in's shared library inside a bundle, or the
    // executable when the code is linked into a program.
    static juce::File getModuleFile();

    // The resources folder of the module. A VST3 module at Contents/<arch>/name.so (Linux, Windows)
    // leads to its bundle's "Contents/Resources"; a bundle given as a folder (macOS) to its own; a
    // program in <prefix>/bin to <prefix>/share/<name>; anything else (an LV2 bundle's library, a
    // program in the build tree) to the "Resources" folder beside it.
    static juce::File resourcesFolderFor (const juce::File& moduleFile);

    static juce::File getResourcesFolder() { return resourcesFolderFor (getModuleFile()); }
    static juce::File getPresetsFolder() { return getResourcesFolder().getChildFile ("Presets"); }
};
