// SPDX-License-Identifier: AGPL-3.0-or-later
#include "PanelCost.h"

#include "PluginHost.h"
#include "ProcessMeter.h"

namespace
{
// The panel's first paints and the framework's start-up messages are not part of the idle cost.
constexpr int settleMs = 1500;

juce::File settingsFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Velkaro Data/ondrivelSettings.xml");
}

void pump (double seconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil ((int) (seconds * 1000.0));
}
} // namespace

bool PanelCost::measure (const juce::File& bundle, int width, int windows, double windowSeconds, Result& result,
                         juce::String& error)
{
    if (juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isEmpty())
    {
        error = "no X display (run under xvfb-run)";
        return false;
    }
    settingsFile().getParentDirectory().createDirectory();
    if (! settingsFile().replaceWithText ("<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"" + juce::String (width)
                                          + "\"/></ALLSETTINGS>"))
    {
        error = "cannot write " + settingsFile().getFullPathName();
        return false;
    }

    auto host = PluginHost::load (bundle, 48000.0, 256, error);
    if (host == nullptr)
        return false;
    std::unique_ptr<juce::AudioProcessorEditor> editor (host->getInstance().createEditor());
    if (editor == nullptr)
    {
        error = "the plug-in has no editor";
        return false;
    }
    editor->setTopLeftPosition (0, 0);
    editor->addToDesktop (0);
    editor->setVisible (true);
    pump (settleMs / 1000.0);
    result.shownWidth = editor->getWidth();

    for (int i = 0; i < windows; ++i)
    {
        const double cpu = ProcessMeter::processCpuSeconds(), wall = ProcessMeter::wallSeconds();
        pump (windowSeconds);
        result.percentOfCore.push_back (100.0 * (ProcessMeter::processCpuSeconds() - cpu)
                                        / (ProcessMeter::wallSeconds() - wall));
    }

    editor.reset();
    pump (0.05);
    return true;
}
