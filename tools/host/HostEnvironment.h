// SPDX-License-Identifier: AGPL-3.0-or-later
// What a console program needs before it can host a plug-in: the framework's message thread, and
// X errors that do not end the process when no window manager is running.
#pragma once

#include <juce_events/juce_events.h>

class HostEnvironment
{
public:
    HostEnvironment();
    ~HostEnvironment();

private:
    // Declared first: the handler must be in place before the framework may open the display.
    bool lenientXErrorsInstalled;
    juce::ScopedJuceInitialiser_GUI framework;

    JUCE_DECLARE_NON_COPYABLE (HostEnvironment)
};
