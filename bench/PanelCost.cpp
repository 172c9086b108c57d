// SPDX-License-Identifier: AGPL-3.0-or-later
#include "PanelCost.h"

#include <algorithm>

#include "PluginHost.h"
#include "ProcessMeter.h"

namespace
{
// The panel's first paints and the framework's start-up work (the first two seconds or so) are not
// part of the idle cost.
constexpr int settleMs = 3000;

juce::File settingsFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Velkaro Data/ondrivelSettings.xml");
}

// Reads the process's CPU time at the edges of each window from inside the blocking message loop,
// as a host's idle loop runs, and ends the loop after the last window. (runDispatchLoopUntil polls
// every millisecond, which alone costs more than a quiet panel should.)
class WindowSampler final : public juce::Timer
{
public:
    WindowSampler (int windowCount, int windowLengthMs, std::vector<double>& percents)
        : windows (windowCount), windowMs (windowLengthMs), out (percents)
    {
        startTimer (settleMs);
    }

    void timerCallback() override
    {
        const double cpu = ProcessMeter::processCpuSeconds(), wall = ProcessMeter::wallSeconds();
        if (started)
            out.push_back (100.0 * (cpu - lastCpu) / (wall - lastWall));
        else
            startTimer (windowMs);
        started = true;
        lastCpu = cpu;
        lastWall = wall;
        if ((int) out.size() >= windows)
        {
            stopTimer();
            juce::MessageManager::getInstance()->stopDispatchLoop();
        }
    }

private:
    const int windows, windowMs;
    std::vector<double>& out;
    bool started = false;
    double lastCpu = 0.0, lastWall = 0.0;
};
} // namespace

bool PanelCost::measure (const juce::File& bundle, const Request& request, Result& result, juce::String& error)
{
    const int width = request.width;
    if (juce::SystemStats::getEnvironmentVariable ("DISPLAY", {}).isEmpty())
    {
        error = "no X display (run under xvfb-run)";
        return false;
    }
    const auto settings = "<ALLSETTINGS><SETTING ID=\"glb_wsz\" Value=\"" + juce::String (width) + "\"/></ALLSETTINGS>";
    settingsFile().getParentDirectory().createDirectory();
    if (width > 0 && ! settingsFile().replaceWithText (settings))
    {
        error = "cannot write " + settingsFile().getFullPathName();
        return false;
    }

    auto host = PluginHost::load (bundle, 48000.0, 256, error);
    if (host == nullptr)
        return false;
    // Width 0: the plug-in loaded and its panel closed, what the host and the processor cost alone.
    // Frame only: a blank window of the panel's size, what a host's window costs with nothing of ours in it.
    std::unique_ptr<juce::Component> editor;
    if (width > 0)
    {
        editor.reset (host->getInstance().createEditor());
        if (editor == nullptr)
        {
            error = "the plug-in has no editor";
            return false;
        }
        if (request.frameOnly)
        {
            const auto size = editor->getBounds();
            editor = std::make_unique<juce::Component>();
            editor->setBounds (size);
            editor->setOpaque (true);
        }
        editor->setTopLeftPosition (request.left, 0);
        editor->addToDesktop (0);
        editor->setVisible (true);
        result.shownWidth = editor->getWidth();
    }

    // The loop runs once per process: the framework's quit flag stays set after it.
    WindowSampler sampler (std::max (1, request.windows), juce::roundToInt (request.windowSeconds * 1000.0),
                           result.percentOfCore);
    juce::MessageManager::getInstance()->runDispatchLoop();
    editor.reset();
    return true;
}
