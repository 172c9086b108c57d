// SPDX-License-Identifier: AGPL-3.0-or-later
// One help line per control, kept as a single block of text; every tooltip is read from it.
#include "editor/ControlHelp.h"

const char* const controlHelpText =
    "\n |octave|    - Mix the transposed signal with the dry signal\t"
    "\n |up|        - Select upper or lower octave"
    "\n |bp1|       - Activate the Octaver module"
    "\n |time|      - Set the duration of the recorded block. (The milliseconds of delay)"
    "\n |sync|      - Set the relative duration in fractions of a bar using the BPM from the DAW/Host. (Tempo sync)"
    "\n |squeezeit| - Apply ring modulation, up or down, to the recorded block (AM to delay) "
    "\n |fmit|      - Apply pitch modulation to the recorded block (FM to delay)"
    "\n |fdbk|      - Set the regeneration gain, i.e. the number of repeats by delay feedback"
    "\n |envms|     - Set the ramp length of the smoothing envelope applied to the recorded block"
    "\n |revmix|    - Sub mix (dry/wet) the reverse delay only"
    "\n |rev|       - Set the Reverse mode on/off"
    "\n |bp2|       - Activate the Reverse delay module"
    "\n |rate|      - Set the speed of the flanger modulation"
    "\n |flangerit| - Set the amount and character (- or +) of the Flanger effect"
    "\n |bp3|       - Activate the Flanger module"
    "\n |pre|       - Put the Flanger before the delay, actually freezing it in the recorded block"
    "\n |tilt|      - Balance highs and lows in the wet signal, crossing at 400 Hz"
    "\n |drywet|    - Mix the effect with the dry signal"
    "\n |pitch|     - Set the relative pitch (in semitones offset) of the modulator, FM synthesis"
    "\n |timbre|    - Set the amount of wave modulation, FM synthesis  "
    "\n |noise|     - Add noise to the oscillator"
    "\n |envmod|    - Set the amount of wave modulation (timbre and noise) by the ADSR evelope"
    "\n |ws|        - Turn on the wave folding effect on the oscillator, the 'timbre' control still applies"
    "\n |attack|    - Set the attack time of the envelope. Note that it's very sensitive near the zero value to shape the snappiness of the attack,  how clicky it would be"
    "\n |decay|     - Set the decay time of the envelope"
    "\n |sustain|   - Set the sustain level of the envelope on note hold"
    "\n |release|   - Set the release time of the envelope"
    "\n |vibrato|   - Set the amount of vibrato effect per voice"
    "\n |volume|    - Set the output level of the synth"
    "\n |reverb|    - Set the reverb effect volume"
    "\n |tap|       - Click this 4 times to set an approximate BPM for a half 4/4 bar length";

juce::String getHelpFor (const juce::String& id)
{
    const auto lines = juce::StringArray::fromLines (controlHelpText);
    for (const auto& line : lines)
    {
        juce::StringArray tokens;
        tokens.addTokens (line, "|", "");
        const auto lineId = tokens.size() > 1 ? tokens[1] : juce::String();
        if (lineId == id)
            return (tokens.size() > 2 ? tokens[2] : juce::String()).fromFirstOccurrenceOf ("-", true, false);
    }
    return "As the name label say...";
}
