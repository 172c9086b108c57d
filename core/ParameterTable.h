// SPDX-License-Identifier: AGPL-3.0-or-later
// The 30 host parameters as one static table; a row's position is the parameter's index everywhere.
#pragma once

#include <juce_core/juce_core.h>

struct ParameterInfo
{
    int index;
    char id[16];
    char name[16];
    double min;
    double max;
    double defaultValue;
    double interval;
    int kind; // 0 rotary knob, 1 linear slider, 2 on/off switch
};

namespace ParameterIndex
{
enum : int
{
    octave, up, bp1, time, sync, fmit, squeezeit, fdbk, envms, revmix, rev, bp2, rate, flangerit, bp3,
    pre, tilt, drywet, pitch, timbre, noise, envmod, ws, attack, decay, sustain, release, vibrato,
    volume, reverb
};
}

constexpr int numParameters = 30;
extern const ParameterInfo parameterTable[numParameters];

// Writes the sync text for a position into a 16-byte buffer and returns the fraction of a bar.
double syncFractionFor (float position, char* text);

// Value-to-text formatters of the table.
juce::String fourDecimalsText (float value, int maxLength);
juce::String millisecondsText (float value, int maxLength);
juce::String multiplierText (float value, int maxLength);
juce::String offOrTwoDecimalsText (float value, int maxLength);
juce::String offOrBlankText (float value, int maxLength);
juce::String signedSemitoneText (float value, int maxLength);
// The text of `time`, given the current raw value of `sync`.
juce::String timeOrSyncText (float value, float syncValue);
