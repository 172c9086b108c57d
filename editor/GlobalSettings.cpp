// SPDX-License-Identifier: AGPL-3.0-or-later
// Stored values are taken as they are: the limits in the table describe the settings, they bound nothing.
#include "editor/GlobalSettings.h"

#include "core/BundleResources.h"
#include "core/XmlText.h"

#include <cstdlib>

namespace
{
struct SettingInfo
{
    const char* id;
    const char* displayText;
    int min;
    int max;
    int defaultValue;
    const char* helpText;
};

constexpr SettingInfo settingTable[] = {
    { "glb_stt", "Show Tool Tips", 0, 1, 1, "Show tooltips like this on all UI controls" },
    { "glb_wsz", "Window Width", 600, 1920, 880, "Change the UI size" },
    { "glb_ogl", "Use OpenGL", 0, 1, 0, "Enable OpenGL support for smoother animations, disable in case you see glitches" },
    { "glb_col", "Set Colours", 0, 1, 0, "Switch the appearance" },
};

struct SettingValues
{
    int showTooltips, windowWidth, useOpenGL, setColours;
};
constexpr SettingValues settingDefaults { 1, 880, 0, 0 };

int* fieldFor (GlobalSettings& s, int row)
{
    int* const fields[] = { &s.showTooltips, &s.windowWidth, &s.useOpenGL, &s.setColours };
    return fields[row];
}
} // namespace

void GlobalSettings::read()
{
    if (dataFolder.isEmpty())
        return;

    showTooltips = settingDefaults.showTooltips;
    windowWidth = settingDefaults.windowWidth;
    useOpenGL = settingDefaults.useOpenGL;
    setColours = settingDefaults.setColours;

    const auto file = getFile();
    if (! file.existsAsFile())
        return;

    const auto root = velkaro::XmlText::parse (file);
    if (root == nullptr || ! root->hasTagName ("ALLSETTINGS") || root->getFirstChildElement() == nullptr)
        return;

    for (auto* child : root->getChildWithTagNameIterator ("SETTING"))
    {
        const auto id = child->getStringAttribute ("ID");
        for (int row = 0; row < (int) std::size (settingTable); ++row)
        {
            if (id == settingTable[row].id)
            {
                // atoi's rule: leading digits count, anything else reads as 0.
                *fieldFor (*this, row) = std::atoi (child->getStringAttribute ("Value").toRawUTF8());
                break;
            }
        }
    }
}

bool GlobalSettings::write() const
{
    if (dataFolder.isEmpty())
        return true;

    const auto file = getFile();
    file.create();

    juce::XmlElement root ("ALLSETTINGS");
    const int values[] = { showTooltips, windowWidth, useOpenGL, setColours };
    for (int row = 0; row < (int) std::size (settingTable); ++row)
    {
        auto* setting = root.createNewChildElement ("SETTING");
        setting->setAttribute ("ID", settingTable[row].id);
        setting->setAttribute ("Value", values[row]);
        setting->addTextElement (settingTable[row].displayText);
    }
    return root.writeTo (file);
}

juce::File bundleResourcesFolder()
{
    return BundleResources::getResourcesFolder();
}

juce::File savedBackgroundFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Velkaro Data")
        .getChildFile ("ondrivel_backgrounds")
        .getChildFile ("savedBkgrd.txt");
}
