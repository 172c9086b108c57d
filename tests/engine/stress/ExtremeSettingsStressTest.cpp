// SPDX-License-Identifier: AGPL-3.0-or-later
// Every parameter at an end of its range, in combination: the loudest and most resonant settings
// the panel allows, with a full chord and retriggered notes, at the lowest and highest rates.
#include "engine/stress/StressCases.h"

namespace
{
using P = int;
struct Setting
{
    P index;
    float value;
};

struct Case
{
    const char* name;
    std::vector<Setting> settings;
};

// Common to every named case: all modules in, everything loud.
const std::vector<Setting> allIn = { { ParameterIndex::bp1, 1 }, { ParameterIndex::bp2, 1 }, { ParameterIndex::bp3, 1 },
                                     { ParameterIndex::volume, 1 }, { ParameterIndex::reverb, 1 }, { ParameterIndex::drywet, 1 },
                                     { ParameterIndex::revmix, 1 }, { ParameterIndex::octave, 1 }, { ParameterIndex::fdbk, 0.98f },
                                     { ParameterIndex::fmit, 1400 }, { ParameterIndex::rate, 10 } };

std::vector<Case> namedCases()
{
    auto with = [] (std::vector<Setting> extra)
    {
        auto s = allIn;
        s.insert (s.end(), extra.begin(), extra.end());
        return s;
    };
    return {
        { "everything up, squeeze +, flanger +, pitch +24", with ({ { ParameterIndex::squeezeit, 1000 }, { ParameterIndex::flangerit, 1 }, { ParameterIndex::pitch, 24 }, { ParameterIndex::up, 1 } }) },
        { "everything up, squeeze -, flanger -, pitch -24", with ({ { ParameterIndex::squeezeit, -1000 }, { ParameterIndex::flangerit, -1 }, { ParameterIndex::pitch, -24 } }) },
        { "flanger pre, tilt +1, shortest envelope", with ({ { ParameterIndex::pre, 1 }, { ParameterIndex::flangerit, 1 }, { ParameterIndex::tilt, 1 }, { ParameterIndex::envms, 2 }, { ParameterIndex::attack, 0 }, { ParameterIndex::release, 0 } }) },
        { "flanger post, tilt -1, longest window", with ({ { ParameterIndex::pre, 0 }, { ParameterIndex::flangerit, -1 }, { ParameterIndex::tilt, -1 }, { ParameterIndex::envms, 160 }, { ParameterIndex::time, 2980 } }) },
        { "shortest delay, synced, forward, all noise", with ({ { ParameterIndex::time, 40 }, { ParameterIndex::sync, 1 }, { ParameterIndex::rev, 0 }, { ParameterIndex::noise, 1 }, { ParameterIndex::timbre, 1 }, { ParameterIndex::envmod, 1 } }) },
        { "waveshaping, full vibrato, long envelope", with ({ { ParameterIndex::ws, 1 }, { ParameterIndex::vibrato, 1 }, { ParameterIndex::attack, 2 }, { ParameterIndex::decay, 4 }, { ParameterIndex::sustain, 1 }, { ParameterIndex::release, 4 } }) },
    };
}

// Each parameter at its minimum or maximum, drawn at random.
Case randomCorner (juce::Random& random, int number)
{
    Case c { nullptr, {} };
    for (const auto& row : parameterTable)
        c.settings.push_back ({ row.index, (float) (random.nextBool() ? row.max : row.min) });
    c.settings.push_back ({ ParameterIndex::volume, 1 });
    juce::ignoreUnused (number);
    return c;
}

StressStats runCase (const Case& c, double rate, juce::int64 seed, double seconds)
{
    juce::Random random (seed);
    StressRig rig (rate, 512);
    for (const auto& s : c.settings)
        rig.setParameter (s.index, s.value);

    stress::ChordPlayer chords (random, (juce::int64) (rate * 0.4), 8);
    juce::MidiBuffer midi;
    midi.ensureSize (8192);
    const auto total = (juce::int64) (rate * stressSeconds (seconds));
    for (juce::int64 done = 0; done < total; done += 512)
    {
        midi.clear();
        chords.addEvents (midi, done, 512);
        rig.render (512, midi);
    }
    return rig.stats;
}
} // namespace

TEST (Stress, ExtremeSettingsInCombinationStayFiniteAndBounded)
{
    juce::int64 seed = 7;
    for (const auto& c : namedCases())
    {
        // Long enough for the delayed copy of the first chord (a second at the default size) to sound.
        for (double rate : { 22050.0, 48000.0 })
            stress::expectHealthy (juce::String (c.name) + " @" + juce::String (rate, 0), runCase (c, rate, seed++, 1.5));
        stress::expectHealthy (juce::String (c.name) + " @192000", runCase (c, 192000.0, seed++, 0.4));
    }

    juce::Random corners (2024);
    for (int i = 0; i < 8; ++i)
        stress::expectHealthy ("random corner " + juce::String (i) + " @48000", runCase (randomCorner (corners, i), 48000.0, seed++, 1.0));
}
