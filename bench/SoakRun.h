// SPDX-License-Identifier: AGPL-3.0-or-later
// Long runs through the whole chain of a VST3 bundle with notes and random automation all the way,
// at several rates and block sizes: the real-time factor, the worst block, and whether the cost
// creeps up over the run.
#pragma once

#include <juce_core/juce_core.h>

class SoakRun
{
public:
    // Prints one line per configuration; false with a reason if the bundle does not load.
    static bool run (const juce::File& bundle, double audioSeconds, juce::String& error);

private:
    static bool runOne (const juce::File& bundle, double sampleRate, int fixedBlock, double audioSeconds,
                        juce::String& error);
};
