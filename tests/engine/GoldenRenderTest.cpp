// SPDX-License-Identifier: AGPL-3.0-or-later
// Whole-plug-in renders whose every output bit is pinned by a hash: any change of the engine that
// moves a single sample of any module, rate or block size shows here.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "effects/UnseededRand.h"
#include "support/TestProcessor.h"
#include "voice/SynthVoice.h"

namespace
{
struct Note { int number; float startSeconds, lengthSeconds; };
struct Case
{
    const char* name;
    double rate;
    int block;
    std::vector<std::pair<int, float>> settings; // parameter index, value in the parameter's units
    std::vector<Note> notes;
    double seconds;
    std::uint64_t hash;
    std::vector<std::pair<double, std::pair<int, float>>> changes {}; // at a second, from the block holding it
    int prepared = 0; // the block size the host prepared for, when it then sends longer blocks
};

using P = std::pair<int, float>;
namespace I = ParameterIndex;
const std::vector<P> dryVoices { { I::bp2, 0.0f }, { I::reverb, 0.0f } };
const std::vector<P> fullPatch { { I::bp1, 1.0f }, { I::bp3, 1.0f }, { I::flangerit, 0.5f }, { I::reverb, 0.5f } };
const std::vector<Note> chord { { 48, 0, 9 }, { 52, 0, 9 }, { 55, 0, 9 }, { 59, 0, 9 }, { 62, 0, 9 }, { 65, 0, 9 }, { 69, 0, 9 }, { 72, 0, 9 } };
// Twelve overlapping notes: the last four take voices that still sound.
const std::vector<Note> stealing { { 40, 0.00f, 0.5f }, { 47, 0.02f, 0.1f }, { 52, 0.04f, 0.5f }, { 55, 0.06f, 0.5f },
                                   { 59, 0.08f, 0.05f }, { 62, 0.10f, 0.5f }, { 64, 0.12f, 0.5f }, { 67, 0.14f, 0.5f },
                                   { 71, 0.20f, 0.3f }, { 74, 0.22f, 0.3f }, { 76, 0.25f, 0.3f }, { 79, 0.30f, 0.2f } };
const std::vector<Note> afterSilence { { 60, 0.25f, 0.1f }, { 67, 2.6f, 0.2f } };
const std::vector<Note> afterLongSilence { { 60, 0.1f, 0.1f }, { 64, 0.1f, 0.1f }, { 67, 9.0f, 0.2f } };

std::uint64_t render (const Case& c)
{
    UnseededRand::restart();
    TestProcessor t (c.rate, c.prepared > 0 ? c.prepared : c.block);
    auto& p = *t.processor;
    SynthVoice::seedPlacement (11);
    for (int i = 0; i < p.synth.getNumVoices(); ++i)
        dynamic_cast<SynthVoice&> (*p.synth.getVoice (i)).seedGenerators (100 + i);
    for (const auto& [index, value] : c.settings)
        *p.parameterValues[(size_t) index] = value;

    std::uint64_t hash = 1469598103934665603ull; // FNV-1a over every output bit, left then right per block
    const int total = (int) (c.seconds * c.rate);
    juce::AudioBuffer<float> buffer (2, c.block);
    for (int start = 0; start < total; start += c.block)
    {
        const int n = std::min (c.block, total - start);
        juce::MidiBuffer midi;
        for (const auto& note : c.notes)
        {
            const auto at = [&] (float s) { return (int) (s * c.rate) - start; };
            if (at (note.startSeconds) >= 0 && at (note.startSeconds) < n)
                midi.addEvent (juce::MidiMessage::noteOn (1, note.number, (juce::uint8) 100), at (note.startSeconds));
            const int end = at (note.startSeconds + note.lengthSeconds);
            if (end >= 0 && end < n)
                midi.addEvent (juce::MidiMessage::noteOff (1, note.number), end);
        }
        for (const auto& [second, change] : c.changes)
            if ((int) (second * c.rate) >= start && (int) (second * c.rate) < start + n)
                *p.parameterValues[(size_t) change.first] = change.second;
        buffer.setSize (2, n, false, false, true);
        buffer.clear();
        p.processBlock (buffer, midi);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < n; ++i)
            {
                std::uint32_t bits;
                std::memcpy (&bits, buffer.getReadPointer (ch) + i, sizeof bits);
                hash = (hash ^ bits) * 1099511628211ull;
            }
    }
    return hash;
}
} // namespace

TEST (GoldenRender, EveryModuleRateAndBlockSizeRendersTheRecordedBits)
{
    const std::vector<P> voiceColour { { I::timbre, 0.7f }, { I::envmod, 0.5f }, { I::noise, 0.3f }, { I::vibrato, 0.6f },
                                       { I::pitch, 8.0f }, { I::bp2, 0.0f }, { I::reverb, 0.0f } };
    auto with = [] (std::vector<P> a, const std::vector<P>& b) { a.insert (a.end(), b.begin(), b.end()); return a; };
    const Case cases[] = {
        { "voices alone", 48000, 256, dryVoices, chord, 0.5, 0x1b56ac5e2a0f94edull },
        { "voice colour, folder", 44100, 7, with (voiceColour, { { I::ws, 1.0f } }), stealing, 0.6, 0xcdb11fd6b7bec522ull },
        { "voice colour switched off and on", 48000, 256, voiceColour, stealing, 1.0, 0xf7364671714ea16eull,
          { { 0.1, { I::noise, 0.0f } }, { 0.2, { I::timbre, 0.0f } }, { 0.25, { I::envmod, 0.0f } }, { 0.5, { I::noise, 0.3f } },
            { 0.55, { I::timbre, 0.7f } }, { 0.7, { I::noise, 0.0f } } } },
        { "default patch stealing", 48000, 256, {}, stealing, 0.7, 0x3cd055c43856376aull },
        { "octaver down", 48000, 256, with (dryVoices, { { I::bp1, 1.0f }, { I::octave, 0.7f } }), chord, 0.5, 0x62943029a4d9926full },
        { "octaver up, long blocks", 96000, 4096, with (dryVoices, { { I::bp1, 1.0f }, { I::up, 1.0f } }), stealing, 0.5, 0xe6314f48e1029f8bull },
        { "octaver turned up and down", 48000, 256, with (dryVoices, { { I::bp1, 1.0f } }), chord, 1.2, 0xf140e0799c293f70ull,
          { { 0.3, { I::up, 1.0f } }, { 0.65, { I::up, 0.0f } }, { 0.9, { I::up, 1.0f } } } },
        { "flanger pre", 44100, 256, with (dryVoices, { { I::bp3, 1.0f }, { I::flangerit, 0.5f } }), chord, 0.5, 0x4ce98bae95fa27b8ull },
        { "flanger post", 48000, 7, with (dryVoices, { { I::bp3, 1.0f }, { I::flangerit, -0.8f }, { I::pre, 0.0f } }), stealing, 0.4, 0x4e0d3ca102889a43ull },
        { "delay reverse, squeeze", 48000, 256, { { I::time, 120.0f }, { I::fdbk, 0.6f }, { I::squeezeit, 300.0f }, { I::reverb, 0.0f }, { I::tilt, -0.5f } }, stealing, 0.8, 0xf630aa151025113aull },
        { "delay forward, fm", 44100, 1, { { I::time, 90.0f }, { I::rev, 0.0f }, { I::fmit, 400.0f }, { I::reverb, 0.0f }, { I::tilt, 0.6f } }, stealing, 0.4, 0x385ef2ca4e277b52ull },
        { "reverb alone", 96000, 256, with (dryVoices, { { I::reverb, 0.9f } }), stealing, 0.6, 0xb07d244d3363701full },
        { "full patch", 48000, 256, fullPatch, chord, 0.8, 0x2008d4af2446f1a5ull },
        { "full patch, blocks longer than prepared", 48000, 256, fullPatch, chord, 0.8, 0x2008d4af2446f1a5ull, {}, 60 },
        { "full patch, odd blocks", 44100, 7, with (fullPatch, { { I::pre, 0.0f }, { I::time, 200.0f } }), stealing, 0.5, 0x45ce17b328a2e752ull },
        { "full patch, long blocks", 96000, 4096, fullPatch, stealing, 0.6, 0x48051e67fcd77e97ull },
        { "wake after silence", 48000, 256, with (fullPatch, { { I::bp3, 0.0f }, { I::reverb, 0.0f }, { I::fdbk, 0.0f }, { I::time, 100.0f } }), afterSilence, 3.0, 0xe3f630fbdd2e5a8bull },
        { "delay rests and wakes forward", 44100, 7, { { I::time, 700.0f }, { I::fdbk, 0.0f }, { I::envms, 40.0f }, { I::rev, 0.0f }, { I::reverb, 0.0f } }, afterSilence, 4.0, 0x1a94f0f0279df1aull },
        { "delay rests and wakes reversed", 48000, 1000, { { I::time, 333.0f }, { I::fdbk, 0.0f }, { I::envms, 150.0f }, { I::reverb, 0.0f } }, afterSilence, 4.0, 0xf9edac0e80e043e7ull },
        { "reverb rests and wakes", 48000, 256, { { I::bp2, 0.0f }, { I::reverb, 0.6f } }, afterLongSilence, 9.5, 0xb59703bb8edcc52full },
        { "wake with reverb", 44100, 256, with (fullPatch, { { I::time, 100.0f } }), afterSilence, 3.0, 0xde2de24ab234d324ull },
    };
    for (const auto& c : cases)
    {
        const auto first = render (c);
        EXPECT_EQ (first, render (c)) << c.name << ": two renders in one process differ";
        EXPECT_EQ (first, c.hash) << c.name << ": 0x" << std::hex << first << "ull";
    }
}
