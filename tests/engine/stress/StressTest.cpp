// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor under a demanding host's worst habits, with the calling thread watched: every rate
// and awkward block size across prepare/release cycles, parameters at their ends in combination,
// MIDI that no keyboard sends, and state restores and automation from another thread while audio runs.
#include "engine/stress/StressRig.h"

#include <atomic>
#include <functional>
#include <thread>

namespace
{
constexpr int varying = 0; // block size drawn anew for every block, up to 8192

// Puts the MIDI for block number `block`, of n samples, into the buffer.
using Events = std::function<void (juce::MidiBuffer&, juce::int64 block, int n, juce::Random&)>;

// Renders `seconds` of audio in blocks of one size.
void play (StressRig& rig, juce::int64 seed, double rate, int blockSize, double seconds, const Events& events)
{
    juce::Random random (seed);
    juce::MidiBuffer midi;
    midi.ensureSize (65536);
    for (juce::int64 b = 0; b < (juce::int64) (rate * seconds) / blockSize; ++b)
    {
        midi.clear();
        events (midi, b, blockSize, random);
        rig.render (blockSize, midi);
    }
}

void allKeys (juce::MidiBuffer& midi, int channel, bool on, int position)
{
    for (int note = 0; note < 128; ++note)
        midi.addEvent (on ? juce::MidiMessage::noteOn (channel, note, (juce::uint8) 127) : juce::MidiMessage::noteOff (channel, note), position);
}

// The loud end of the chain, so that every stage sees many voices at once.
void allStagesLoud (StressRig& rig)
{
    for (int index : { ParameterIndex::bp1, ParameterIndex::bp2, ParameterIndex::bp3, ParameterIndex::reverb })
        rig.setParameter (index, 1.0f);
    rig.setParameter (ParameterIndex::fdbk, 0.98f);
}
} // namespace

TEST (Stress, EveryRateAndBlockSizeAcrossPrepareReleaseCyclesWithAutomation)
{
    // One instance, released and prepared again for every pair with the rate changing each time,
    // as hosts do on settings changes. Chords run on across the cycles, so a cycle ends notes it
    // never saw begin; parameters move before every block.
    juce::Random random (101);
    StressRig rig (48000.0, 512);
    stress::ChordPlayer chords (random, 4000, 5);
    juce::MidiBuffer midi;
    midi.ensureSize (8192);
    juce::int64 position = 0;
    for (int blockSize : { 1, 2, 7, 31, 32, 33, 256, 1000, 4096, 8192, varying })
        for (double rate : { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 })
        {
            rig.reprepare (rate, blockSize == varying ? 8192 : blockSize);
            rig.stats = {};
            const auto total = (juce::int64) (rate * stress::seconds (0.12));
            for (juce::int64 done = 0; done < total;)
            {
                int n = blockSize;
                if (blockSize == varying)
                    n = random.nextInt (4) == 0 ? 1 + random.nextInt (8) : 1 + random.nextInt (8192);
                n = (int) juce::jmin ((juce::int64) n, total - done);
                rig.randomiseParameters (random, 3);
                midi.clear();
                chords.addEvents (midi, position, n);
                for (int i = 0; done == 0 && i < 4; ++i) // sound from the first block of every cycle
                    midi.addEvent (juce::MidiMessage::noteOn (1, 40 + random.nextInt (50), (juce::uint8) 100), 0);
                if (random.nextInt (8) == 0)
                    midi.addEvent (juce::MidiMessage::pitchWheel (1, random.nextInt (16384)), random.nextInt (n));
                rig.render (n, midi);
                done += n;
                position += n;
            }
            stress::expectHealthy (juce::String (rate, 0) + " Hz, block " + (blockSize == varying ? juce::String ("varying") : juce::String (blockSize)),
                                   rig.stats);
        }
}

TEST (Stress, ParametersAtTheirEndsInCombinationStayFiniteAndBounded)
{
    using P = std::vector<std::pair<int, float>>;
    namespace I = ParameterIndex;
    // Common to every named case: all modules in, everything loud.
    const P allIn = { { I::bp1, 1 }, { I::bp2, 1 }, { I::bp3, 1 }, { I::volume, 1 }, { I::reverb, 1 }, { I::drywet, 1 }, { I::revmix, 1 },
                      { I::octave, 1 }, { I::fdbk, 0.98f }, { I::fmit, 1400 }, { I::rate, 10 } };
    const std::pair<const char*, P> named[] = {
        { "squeeze +, flanger +, pitch +24", { { I::squeezeit, 1000 }, { I::flangerit, 1 }, { I::pitch, 24 }, { I::up, 1 } } },
        { "squeeze -, flanger -, pitch -24", { { I::squeezeit, -1000 }, { I::flangerit, -1 }, { I::pitch, -24 } } },
        { "flanger pre, tilt +1, shortest envelope", { { I::pre, 1 }, { I::flangerit, 1 }, { I::tilt, 1 }, { I::envms, 2 }, { I::attack, 0 }, { I::release, 0 } } },
        // Half dry: the longest delay would keep a fully wet run silent.
        { "flanger post, tilt -1, longest window and delay", { { I::pre, 0 }, { I::flangerit, -1 }, { I::tilt, -1 }, { I::envms, 160 }, { I::time, 2980 }, { I::drywet, 0.5f } } },
        { "shortest delay, synced, forward, all noise", { { I::time, 40 }, { I::sync, 1 }, { I::rev, 0 }, { I::noise, 1 }, { I::timbre, 1 }, { I::envmod, 1 } } },
        { "waveshaping, full vibrato, long envelope", { { I::ws, 1 }, { I::vibrato, 1 }, { I::attack, 2 }, { I::decay, 4 }, { I::sustain, 1 }, { I::release, 4 } } },
    };
    auto run = [] (const juce::String& name, const P& settings, double rate, double seconds, juce::int64 seed)
    {
        StressRig rig (rate, 512);
        for (const auto& [index, value] : settings)
            rig.setParameter (index, value);
        juce::Random chordRandom (seed);
        stress::ChordPlayer chords (chordRandom, (juce::int64) (rate * 0.4), 8);
        play (rig, seed, rate, 512, stress::seconds (seconds), [&] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random&) { chords.addEvents (m, b * n, n); });
        stress::expectHealthy (name + " @" + juce::String (rate, 0), rig.stats);
    };

    juce::int64 seed = 7;
    for (const auto& [name, extra] : named)
    {
        auto settings = allIn;
        settings.insert (settings.end(), extra.begin(), extra.end());
        // Fully wet: long enough for the delayed copy of the first chord (a second at the default
        // size) to sound.
        for (double rate : { 22050.0, 48000.0, 192000.0 })
            run (name, settings, rate, rate > 100000.0 ? 1.1 : 1.5, seed++);
    }
    // Every parameter at its minimum or maximum, drawn at random.
    juce::Random corners (2024);
    for (int i = 0; i < 8; ++i)
    {
        P settings;
        for (const auto& row : parameterTable)
            settings.emplace_back (row.index, (float) (corners.nextBool() ? row.max : row.min));
        settings.emplace_back (I::volume, 1.0f);
        run ("random corner " + juce::String (i), settings, 48000.0, 1.0, seed++);
    }
}

TEST (Stress, MidiStormsStayFiniteAndAllocationFree)
{
    using M = juce::MidiMessage;
    // MIDI that sequencers and broken controllers send: whole keyboards in one block, more notes than
    // voices, every kind of message on every channel. Chords that release before the next one never
    // steal a voice, so there not even the C allocator may be called.
    struct Storm { const char* name; stress::Stealing stealing; Events events; };
    const Storm storms[] = {
        { "128 notes on and off in one block", stress::Stealing::possible,
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random&) { if (b % 8 == 0) { allKeys (m, 1, true, 0); allKeys (m, 1, false, n - 1); } } },
        { "128 notes held, beyond the voice count", stress::Stealing::possible,
          [] (juce::MidiBuffer& m, juce::int64 b, int, juce::Random&) { if (b == 0) allKeys (m, 1, true, 0); if (b == 150) allKeys (m, 1, false, 0); } },
        { "everything at once", stress::Stealing::possible, [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              const M kinds[] = { M::noteOn (1, r.nextInt (128), (juce::uint8) r.nextInt (128)), M::noteOff (1, r.nextInt (128)),
                                  M::pitchWheel (1, r.nextInt (16384)), M::controllerEvent (1, 1, r.nextInt (128)),
                                  M::controllerEvent (1, 64, r.nextInt (128)), M::allNotesOff (1), M::allSoundOff (1) };
              for (int i = 0; i < 24; ++i)
              {
                  auto message = kinds[r.nextInt (7)];
                  message.setChannel (1 + r.nextInt (16));
                  m.addEvent (message, r.nextInt (n));
              }
              if (b % 32 == 0) allKeys (m, 1 + r.nextInt (16), true, r.nextInt (n));
          } },
        { "eight-note chords released before the next", stress::Stealing::impossible, [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random&) {
              const auto period = 44100 / n;
              for (int note : { 36, 43, 48, 55, 60, 64, 67, 72 })
              {
                  if (b % period == 0) m.addEvent (M::noteOn (1, note, (juce::uint8) 100), 0);
                  if (b % period == period / 4) m.addEvent (M::noteOff (1, note), 0);
              }
          } },
    };

    juce::int64 seed = 500;
    for (const auto& storm : storms)
        for (int blockSize : { 7, 256 })
        {
            StressRig rig (44100.0, blockSize);
            allStagesLoud (rig);
            play (rig, seed++, 44100.0, blockSize, stress::seconds (1.0), storm.events);
            // Every note released, pedals up: the voices must be able to fall silent again.
            juce::MidiBuffer release;
            for (int ch = 1; ch <= 16; ++ch)
            {
                release.addEvent (M::controllerEvent (ch, 64, 0), 0);
                allKeys (release, ch, false, 0);
            }
            rig.render (blockSize, release);
            stress::expectHealthy (juce::String (storm.name) + ", block " + juce::String (blockSize), rig.stats, storm.stealing);
        }
}

TEST (Stress, StateRestoresAndAutomationFromAnotherThreadWhileAudioRuns)
{
    // The test thread plays the host's message thread; a second thread renders, as a host's audio
    // thread does, so the changes land in the middle of blocks. A restore may cut the sound; it must
    // not crash, produce NaN or make the audio thread allocate or wait.
    StressRig rig (48000.0, 512);
    allStagesLoud (rig);
    juce::Random random (4242);
    std::vector<juce::MemoryBlock> states (8);
    for (auto& state : states)
    {
        rig.randomiseParameters (random, 30);
        rig.processor().getStateInformation (state);
    }
    states.emplace_back ("VC2!\x05\0\0\0<a/", 12); // damaged
    states.emplace_back ();                       // empty

    std::atomic<bool> running { true };
    std::atomic<int> blocksRendered { 0 };
    std::thread audio ([&]
    {
        juce::Random audioRandom (99);
        stress::ChordPlayer chords (audioRandom, 4800, 6);
        juce::MidiBuffer midi;
        midi.ensureSize (4096);
        for (juce::int64 position = 0; running.load();)
        {
            const int n = 1 + audioRandom.nextInt (512);
            midi.clear();
            chords.addEvents (midi, position, n);
            rig.render (n, midi);
            position += n;
            blocksRendered.fetch_add (1);
        }
    });

    const auto end = juce::Time::getMillisecondCounter() + (juce::uint32) (stress::seconds (1.5) * 1000.0);
    int restores = 0, changes = 0;
    while (juce::Time::getMillisecondCounter() < end || blocksRendered.load() < 200)
    {
        if (random.nextInt (4) == 0)
        {
            const auto& state = states[(size_t) random.nextInt ((int) states.size())];
            rig.processor().setStateInformation (state.getData(), (int) state.getSize());
            ++restores;
        }
        else
        {
            rig.setNormalised (random.nextInt (numParameters), random.nextFloat());
            ++changes;
        }
        std::this_thread::yield();
    }
    running = false;
    audio.join();
    stress::expectHealthy ("while audio runs: " + juce::String (restores) + " restores, " + juce::String (changes) + " changes", rig.stats);
}
