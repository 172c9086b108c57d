// SPDX-License-Identifier: AGPL-3.0-or-later
// The cost of a block must not grow the longer the plug-in runs: denormals in a decaying feedback
// path or state that accumulates show up as later blocks costing more than early ones of the same
// job. Thread CPU time is compared, not wall time, so other processes on the machine do not count.
#include "engine/stress/StressCases.h"

#include <algorithm>

namespace
{
double percentile (std::vector<double> values, double p)
{
    if (values.empty())
        return 0.0;
    std::sort (values.begin(), values.end());
    return values[(size_t) juce::jlimit (0.0, (double) values.size() - 1.0, p * (double) (values.size() - 1))];
}

std::vector<double> slice (const std::vector<double>& v, size_t from, size_t to)
{
    return { v.begin() + (std::ptrdiff_t) from, v.begin() + (std::ptrdiff_t) to };
}
} // namespace

TEST (Stress, BlockCostDoesNotCreepOverARun)
{
    constexpr double rate = 48000.0;
    constexpr int blockSize = 256;
    StressRig rig (rate, blockSize);
    for (int index : { ParameterIndex::bp1, ParameterIndex::bp2, ParameterIndex::bp3 })
        rig.setParameter (index, 1.0f);
    rig.setParameter (ParameterIndex::reverb, 1.0f);
    rig.setParameter (ParameterIndex::fdbk, 0.98f);

    juce::Random random (31337);
    juce::MidiBuffer midi;
    midi.ensureSize (4096);

    // A job that repeats each second: a chord, held then released, with the continuous parameters
    // moving. Then the same length of silence, in which every tail decays towards the denormal range.
    const int blocksPerSecond = (int) (rate / blockSize);
    const int seconds = (int) juce::jmax (3.0, stressSeconds (5.0));
    const int chord[] = { 36, 43, 48, 55, 60, 64, 67, 72 };
    const int continuous[] = { ParameterIndex::tilt, ParameterIndex::drywet, ParameterIndex::flangerit, ParameterIndex::timbre };

    rig.recordTimes = true;
    for (int b = 0; b < seconds * blocksPerSecond; ++b)
    {
        midi.clear();
        const int inSecond = b % blocksPerSecond;
        for (int note : chord)
        {
            if (inSecond == 0)
                midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
            if (inSecond == blocksPerSecond / 2)
                midi.addEvent (juce::MidiMessage::noteOff (1, note), 0);
        }
        rig.setNormalised (continuous[random.nextInt (4)], random.nextFloat());
        rig.render (blockSize, midi);
    }
    const auto playing = rig.stats.blockNanoseconds;
    rig.stats.blockNanoseconds.clear();
    for (int b = 0; b < seconds * blocksPerSecond; ++b)
        rig.render (blockSize);
    const auto silent = rig.stats.blockNanoseconds;

    const size_t perSecond = (size_t) blocksPerSecond;
    const auto first = slice (playing, 0, perSecond);
    const auto last = slice (playing, playing.size() - perSecond, playing.size());
    const auto silentLast = slice (silent, silent.size() - perSecond, silent.size());
    const double firstMedian = percentile (first, 0.5), lastMedian = percentile (last, 0.5);
    const double silentMedian = percentile (silentLast, 0.5);
    std::printf ("stress | cost per block (us): playing first second median %.1f p90 %.1f, last second median %.1f p90 %.1f, "
                 "silent tail median %.1f p90 %.1f\n",
                 firstMedian / 1000.0, percentile (first, 0.9) / 1000.0, lastMedian / 1000.0, percentile (last, 0.9) / 1000.0,
                 silentMedian / 1000.0, percentile (silentLast, 0.9) / 1000.0);

    // Eight notes, released half a second before the next chord: no voice is ever stolen.
    stress::expectHealthy ("cost run: " + juce::String (seconds) + " s playing, " + juce::String (seconds) + " s silent", rig.stats,
                           stress::Stealing::impossible);
    // Generous factors: only a systematic growth (denormals cost tens of times more) can exceed them.
    EXPECT_LT (lastMedian, firstMedian * 2.0 + 5000.0);
    EXPECT_LT (silentMedian, firstMedian * 2.0 + 5000.0);
}
