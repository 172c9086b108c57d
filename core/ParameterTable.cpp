// SPDX-License-Identifier: AGPL-3.0-or-later
#include "core/ParameterTable.h"

#include <cmath>
#include <cstring>

const ParameterInfo parameterTable[numParameters] = {
    { 0, "octave", "8va mix", 0, 1, 0.5, 0, 0 },
    { 1, "up", "high 8Va", 0, 1, 0, 1, 2 },
    { 2, "bp1", "active", 0, 1, 0, 1, 2 },
    { 3, "time", "size", 40, 2980, 1000, 1, 0 },
    { 4, "sync", "T", 0, 1, 0, 1, 2 },
    { 5, "fmit", "FMit", 0, 1400, 0, 1, 1 },
    { 6, "squeezeit", "squeezeit", -1000, 1000, 0, 1, 1 },
    { 7, "fdbk", "repeats", 0, 0.98, 0.2, 0, 0 },
    { 8, "envms", "env time", 2, 160, 5, 1, 1 },
    { 9, "revmix", "wet mix", 0, 1, 1, 0, 0 },
    { 10, "rev", "reverse", 0, 1, 1, 1, 2 },
    { 11, "bp2", "active", 0, 1, 1, 1, 2 },
    { 12, "rate", "rate", 0.01, 10, 1, 0.01, 0 },
    { 13, "flangerit", "flangerit", -1, 1, 0, 0.01, 1 },
    { 14, "bp3", "active", 0, 1, 0, 1, 2 },
    { 15, "pre", "flanger pre", 0, 1, 1, 1, 2 },
    { 16, "tilt", "tilt EQ", -1, 1, 0, 0, 0 },
    { 17, "drywet", "dry/wet", 0, 1, 0.5, 0, 0 },
    { 18, "pitch", "ratio", -24, 24, -12, 4, 0 },
    { 19, "timbre", "timbre", 0, 1, 0, 0, 0 },
    { 20, "noise", "noise", 0, 1, 0, 0, 0 },
    { 21, "envmod", "env mod", 0, 1, 0, 0, 0 },
    { 22, "ws", "waveshaping", 0, 1, 0, 1, 2 },
    { 23, "attack", "attack", 0, 2, 0, 0, 0 },
    { 24, "decay", "decay", 0, 4, 0.5, 0, 0 },
    { 25, "sustain", "sustain", 0, 1, 0.5, 0, 0 },
    { 26, "release", "release", 0, 4, 0.1, 0, 0 },
    { 27, "vibrato", "vibrato", 0, 1, 0, 0, 0 },
    { 28, "volume", "volume", 0, 1, 1, 0.001, 0 },
    { 29, "reverb", "reverb", 0, 1, 0.1, 0, 0 },
};

double syncFractionFor (float position, char* text)
{
    struct Entry { const char* text; double fraction; };
    static const Entry entries[] = {
        { "1/16", 0.0625 }, { "1/8T", 1.0 / 12.0 }, { "1/16D", 0.09375 }, { "1/8", 0.125 },
        { "1/4T", 1.0 / 6.0 }, { "1/8D", 0.1875 }, { "1/4", 0.25 }, { "2/4", 0.5 },
        { "3/4", 0.75 }, { "4/4", 1.0 }, { "8/4", 2.0 },
    };
    // Truncation towards zero after adding a half; NaN and huge values fall to the blank entry.
    const float shifted = position + 0.5f;
    if (shifted > -1.0f && shifted < 11.0f)
    {
        const int index = (int) shifted;
        if (index >= 0 && index <= 10)
        {
            std::strcpy (text, entries[index].text);
            return entries[index].fraction;
        }
    }
    std::strcpy (text, " ");
    return 1.0;
}

juce::String fourDecimalsText (float value, int)
{
    return juce::String (value, 4);
}

juce::String millisecondsText (float value, int)
{
    return juce::String (juce::roundToInt (value)) + " ms";
}

juce::String multiplierText (float value, int)
{
    const int rounded = juce::roundToInt (value);
    if (rounded == 0)
        return "off";
    return juce::String (rounded) + " mult";
}

juce::String offOrTwoDecimalsText (float value, int)
{
    if (std::abs (value) < 0.01f)
        return "off";
    return juce::String (value, 2);
}

juce::String offOrBlankText (float value, int)
{
    if (! (value > 0.0f))
        return "off";
    return {};
}

juce::String signedSemitoneText (float value, int)
{
    // The text names the interval the voice really plays.
    float shown = value;
    if (value == 8.0f) shown = 7.0f;
    else if (value == -8.0f) shown = -7.0f;
    else if (value == 20.0f) shown = 19.0f;
    else if (value == -20.0f) shown = -19.0f;
    else if (value == -4.0f) shown = -5.0f;

    const int rounded = juce::roundToInt (shown);
    return (shown > 0.0f ? "+" : "") + juce::String (rounded);
}

juce::String timeOrSyncText (float value, float syncValue)
{
    if (syncValue > 0.5f)
    {
        const float position = std::floor (((value - 160.0f) / 2820.0f) * 10.0f);
        char text[16] = " ";
        syncFractionFor (position, text);
        return juce::String (text);
    }
    return juce::String (juce::roundToInt (value)) + " ms";
}
