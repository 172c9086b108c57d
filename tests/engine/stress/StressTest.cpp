// SPDX-License-Identifier: AGPL-3.0-or-later
// The processor under a demanding host's worst habits: every rate and awkward block size across
// prepare/release cycles, parameters at their ends, MIDI that no keyboard sends, state restores and
// automation from another thread while audio runs. Every case must stay finite and bounded, allocate
// nothing and take no more than the expected locks; each prints its line with its peak.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

#include "engine/support/ScopedRealTimeRecord.h"
#include "engine/support/TestProcessor.h"

namespace
{
constexpr int varying = 0; // block size drawn anew for every block, up to 8192

// Shorter in sanitized builds, where the sanitizer owns malloc.
double stressSeconds (double atFullSpeed) { return ScopedRealTimeRecord::isActive() ? atFullSpeed : atFullSpeed * 0.25; }

// juce::Synthesiser (JUCE 8) empties its voice-stealing array with Array::clear(), which frees the
// storage, so every steal calls malloc on the audio thread; the C allocator is held to zero only
// where no voice can be stolen. operator new is held to zero everywhere.
enum class Stealing { impossible, possible };

// Drives the processor as a host would and records what each block did on the calling thread.
struct StressRig : TestProcessor
{
    StressRig (double sampleRate, int maxBlockSize) : TestProcessor (sampleRate, maxBlockSize) { buffer.setSize (2, maxBlockSize); }

    // releaseResources, then prepareToPlay, as a host does on a settings change.
    void prepare (double sampleRate, int maxBlockSize)
    {
        processor->releaseResources();
        processor->setRateAndBufferSizeDetails (sampleRate, maxBlockSize);
        processor->prepareToPlay (sampleRate, maxBlockSize);
        buffer.setSize (2, maxBlockSize);
    }

    // One processBlock of n samples into a cleared view of the buffer, as a host hands a shorter block.
    void render (int n, juce::MidiBuffer& midi)
    {
        juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), 2, n);
        block.clear();
        bool modWheel = false;
        for (const auto m : midi)
            modWheel = modWheel || (m.numBytes == 3 && (m.data[0] & 0xf0) == 0xb0 && m.data[1] == 1);
        {
            ScopedRealTimeRecord record;
            processor->processBlock (block, midi);
            stats.news += record.getNews();
            stats.mallocs += record.getMallocs();
            auto& most = modWheel ? stats.mostMutexesWithModWheel : stats.mostMutexes;
            most = std::max (most, record.getDistinctMutexes());
        }
        stats.blocks += 1;
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < n; ++i)
                if (const float x = block.getSample (ch, i); ! std::isfinite (x))
                    ++stats.nonFinite;
                else
                    stats.peak = std::max (stats.peak, std::abs (x));
    }

    // Through the parameter object, as the plug-in wrapper does.
    void setNormalised (int index, float value) { processor->parameters.getParameter (parameterTable[index].id)->setValueNotifyingHost (value); }

    // Any parameter but the volume, so that the output rarely falls silent; a third of the changes
    // go to an end of the range, where most trouble lives.
    void randomiseParameters (juce::Random& random, int howMany)
    {
        for (int i = 0; i < howMany; ++i)
            if (const int index = random.nextInt (numParameters); index != ParameterIndex::volume)
                setNormalised (index, random.nextInt (3) == 0 ? (float) random.nextInt (2) : random.nextFloat());
    }

    // The loud end of the chain, so that every stage sees many voices at once.
    void allStagesLoud() { set ({ { "bp1", 1.0f }, { "bp2", 1.0f }, { "bp3", 1.0f }, { "reverb", 1.0f }, { "fdbk", 0.98f } }); }

    void expectHealthy (const juce::String& name, Stealing stealing = Stealing::possible)
    {
        std::printf ("stress | %-58s | %7lld blocks | peak %9.4f | non-finite %lld | allocations %zu new, %zu malloc | mutexes %zu/%zu\n",
                     name.toRawUTF8(), (long long) stats.blocks, (double) stats.peak, (long long) stats.nonFinite, stats.news,
                     stats.mallocs, stats.mostMutexes, stats.mostMutexesWithModWheel);
        std::fflush (stdout);
        EXPECT_EQ (stats.nonFinite, 0) << name;
        // No limiter in the chain, so loud settings may exceed full scale; this only catches output
        // that grows without limit (a feedback loop gone unstable).
        EXPECT_LT (stats.peak, 64.0f) << name;
        EXPECT_EQ (stats.news, 0u) << name;
        EXPECT_TRUE (stealing == Stealing::possible || stats.mallocs == 0) << name << ": " << stats.mallocs << " C allocator calls";
        // The synthesiser's voice lock and its voice-stealing lock, and the keyboard state's lock;
        // with a mod-wheel message also the listener locks of the parameter notification it sends.
        EXPECT_LE (stats.mostMutexes, 3u) << name;
        EXPECT_LE (stats.mostMutexesWithModWheel, 5u) << name;
    }

    struct Stats
    {
        juce::int64 blocks = 0, nonFinite = 0;
        std::size_t news = 0, mallocs = 0, mostMutexes = 0, mostMutexesWithModWheel = 0;
        float peak = 0.0f;
    } stats;
    juce::AudioBuffer<float> buffer;
};

// A chord that changes every `period` samples: note-offs for the old notes and note-ons for new
// ones, inside the block that reaches the change.
struct ChordPlayer
{
    void addEvents (juce::MidiBuffer& midi, juce::int64 blockStart, int n)
    {
        for (juce::int64 s = ((blockStart + period - 1) / period) * period; s < blockStart + n; s += period)
        {
            const int offset = (int) (s - blockStart);
            for (int note : held)
                midi.addEvent (juce::MidiMessage::noteOff (1, note), offset);
            held.clearQuick();
            for (int i = 0; i < count; ++i)
                held.add (24 + random.nextInt (84));
            for (int note : held)
                midi.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) (1 + random.nextInt (127))), offset);
        }
    }

    juce::Random& random;
    juce::int64 period;
    int count;
    juce::Array<int> held {};
};

// Puts the MIDI for block number `block`, of n samples from `position` on, into the buffer.
using Events = std::function<void (juce::MidiBuffer&, juce::int64 block, juce::int64 position, int n, juce::Random&)>;

// Renders `seconds` of audio in blocks of one size, or of sizes drawn anew for every block.
void play (StressRig& rig, juce::Random& random, double rate, int blockSize, double seconds, const Events& events)
{
    juce::MidiBuffer midi;
    midi.ensureSize (65536);
    const auto total = (juce::int64) (rate * seconds);
    for (juce::int64 done = 0, b = 0; done < total; ++b)
    {
        const int n = (int) std::min<juce::int64> (total - done, blockSize != varying ? blockSize
                                                                  : random.nextInt (4) == 0 ? 1 + random.nextInt (8) : 1 + random.nextInt (8192));
        midi.clear();
        events (midi, b, done, n, random);
        rig.render (n, midi);
        done += n;
    }
}

void allKeys (juce::MidiBuffer& midi, int channel, bool on, int position)
{
    for (int note = 0; note < 128; ++note)
        midi.addEvent (on ? juce::MidiMessage::noteOn (channel, note, (juce::uint8) 127) : juce::MidiMessage::noteOff (channel, note), position);
}
} // namespace

TEST (Stress, EveryRateAndBlockSizeAcrossPrepareReleaseCyclesWithAutomation)
{
    // One instance, released and prepared again for every pair with the rate changing each time,
    // as hosts do on settings changes. Chords run on across the cycles, so a cycle ends notes it
    // never saw begin; parameters move before every block.
    juce::Random random (101);
    StressRig rig (48000.0, 512);
    ChordPlayer chords { random, 4000, 5 };
    juce::int64 position = 0;
    for (int blockSize : { 1, 2, 7, 31, 32, 33, 256, 1000, 4096, 8192, varying })
        for (double rate : { 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 })
        {
            rig.prepare (rate, blockSize == varying ? 8192 : blockSize);
            rig.stats = {};
            play (rig, random, rate, blockSize, stressSeconds (0.12), [&] (juce::MidiBuffer& m, juce::int64 b, juce::int64, int n, juce::Random& r)
            {
                rig.randomiseParameters (r, 3);
                chords.addEvents (m, position, n);
                position += n;
                for (int i = 0; b == 0 && i < 4; ++i) // sound from the first block of every cycle
                    m.addEvent (juce::MidiMessage::noteOn (1, 40 + r.nextInt (50), (juce::uint8) 100), 0);
                if (r.nextInt (8) == 0)
                    m.addEvent (juce::MidiMessage::pitchWheel (1, r.nextInt (16384)), r.nextInt (n));
            });
            rig.expectHealthy (juce::String (rate, 0) + " Hz, block " + (blockSize == varying ? juce::String ("varying") : juce::String (blockSize)));
        }
}

TEST (Stress, ParametersAtTheirEndsInCombinationStayFiniteAndBounded)
{
    using P = std::vector<std::pair<const char*, float>>;
    // Common to every named case: all modules in, everything loud.
    const P allIn = { { "bp1", 1 }, { "bp2", 1 }, { "bp3", 1 }, { "volume", 1 }, { "reverb", 1 }, { "drywet", 1 }, { "revmix", 1 },
                      { "octave", 1 }, { "fdbk", 0.98f }, { "fmit", 1400 }, { "rate", 10 } };
    const std::pair<const char*, P> named[] = {
        { "squeeze +, flanger +, pitch +24", { { "squeezeit", 1000 }, { "flangerit", 1 }, { "pitch", 24 }, { "up", 1 } } },
        { "squeeze -, flanger -, pitch -24", { { "squeezeit", -1000 }, { "flangerit", -1 }, { "pitch", -24 } } },
        { "flanger pre, tilt +1, shortest envelope", { { "pre", 1 }, { "flangerit", 1 }, { "tilt", 1 }, { "envms", 2 }, { "attack", 0 }, { "release", 0 } } },
        // Half dry: the longest delay would keep a fully wet run silent.
        { "flanger post, tilt -1, longest window and delay", { { "pre", 0 }, { "flangerit", -1 }, { "tilt", -1 }, { "envms", 160 }, { "time", 2980 }, { "drywet", 0.5f } } },
        { "shortest delay, synced, forward, all noise", { { "time", 40 }, { "sync", 1 }, { "rev", 0 }, { "noise", 1 }, { "timbre", 1 }, { "envmod", 1 } } },
        { "waveshaping, full vibrato, long envelope", { { "ws", 1 }, { "vibrato", 1 }, { "attack", 2 }, { "decay", 4 }, { "sustain", 1 }, { "release", 4 } } },
    };
    auto run = [] (const juce::String& name, const P& settings, double rate, double seconds, juce::int64 seed)
    {
        StressRig rig (rate, 512);
        rig.set (settings);
        juce::Random random (seed);
        ChordPlayer chords { random, (juce::int64) (rate * 0.4), 8 };
        play (rig, random, rate, 512, stressSeconds (seconds), [&] (juce::MidiBuffer& m, juce::int64, juce::int64 position, int n, juce::Random&) { chords.addEvents (m, position, n); });
        rig.expectHealthy (name + " @" + juce::String (rate, 0));
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
}

TEST (Stress, MidiStormsStayFiniteAndAllocationFree)
{
    using M = juce::MidiMessage;
    // MIDI that sequencers and broken controllers send: whole keyboards in one block, more notes than
    // voices, every kind of message on every channel. Chords that release before the next one never
    // steal a voice, so there not even the C allocator may be called.
    struct Storm { const char* name; Stealing stealing; Events events; };
    const Storm storms[] = {
        { "128 notes on and off in one block", Stealing::possible, [] (juce::MidiBuffer& m, juce::int64 b, juce::int64, int n, juce::Random&) {
              if (b % 8 == 0) allKeys (m, 1, true, 0), allKeys (m, 1, false, n - 1); } },
        { "128 notes held, beyond the voice count", Stealing::possible,
          [] (juce::MidiBuffer& m, juce::int64 b, juce::int64, int, juce::Random&) { if (b == 0) allKeys (m, 1, true, 0); if (b == 150) allKeys (m, 1, false, 0); } },
        { "everything at once", Stealing::possible, [] (juce::MidiBuffer& m, juce::int64 b, juce::int64, int n, juce::Random& r) {
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
        { "eight-note chords released before the next", Stealing::impossible, [] (juce::MidiBuffer& m, juce::int64 b, juce::int64, int n, juce::Random&) {
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
            rig.allStagesLoud();
            juce::Random random (seed++);
            play (rig, random, 44100.0, blockSize, stressSeconds (1.0), storm.events);
            rig.expectHealthy (juce::String (storm.name) + ", block " + juce::String (blockSize), storm.stealing);
        }
}

TEST (Stress, StateRestoresAndAutomationFromAnotherThreadWhileAudioRuns)
{
    // The test thread plays the host's message thread; a second thread renders, as a host's audio
    // thread does, so the changes land in the middle of blocks. A restore may cut the sound; it must
    // not crash, produce NaN or make the audio thread allocate or wait.
    StressRig rig (48000.0, 512);
    rig.allStagesLoud();
    juce::Random random (4242);
    // Eight states, a damaged one and an empty one.
    std::vector<juce::MemoryBlock> states (8);
    for (auto& state : states)
        rig.randomiseParameters (random, 30), rig.processor->getStateInformation (state);
    states.insert (states.end(), { juce::MemoryBlock ("VC2!\x05\0\0\0<a/", 12), juce::MemoryBlock() });

    std::atomic<bool> running { true };
    std::atomic<int> blocksRendered { 0 };
    std::thread audio ([&]
    {
        juce::Random audioRandom (99);
        ChordPlayer chords { audioRandom, 4800, 6 };
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

    const auto end = juce::Time::getMillisecondCounter() + (juce::uint32) (stressSeconds (1.5) * 1000.0);
    int restores = 0, changes = 0;
    while (juce::Time::getMillisecondCounter() < end || blocksRendered.load() < 200)
    {
        if (random.nextInt (4) == 0)
        {
            const auto& state = states[(size_t) random.nextInt ((int) states.size())];
            rig.processor->setStateInformation (state.getData(), (int) state.getSize());
            ++restores;
        }
        else
            rig.setNormalised (random.nextInt (numParameters), random.nextFloat()), ++changes;
        std::this_thread::yield();
    }
    running = false;
    audio.join();
    rig.expectHealthy ("while audio runs: " + juce::String (restores) + " restores, " + juce::String (changes) + " changes");
}

// Every case above relies on this record: one that never counts would let them all pass.
TEST (RealTimeSafety, RecordSeesAllocationsAndLocksOfThisThread)
{
    if (! ScopedRealTimeRecord::isActive())
        GTEST_SKIP() << "AddressSanitizer owns the allocator and the locks";
    std::mutex a, b;
    ScopedRealTimeRecord record;
    int* volatile p = new int (3);
    delete p;
    void* volatile q = std::malloc (24);
    std::free (q);
    for (int i = 0; i < 3; ++i)
    {
        std::lock_guard<std::mutex> first (a);
        std::lock_guard<std::mutex> second (b);
    }
    EXPECT_EQ (record.getNews(), 1u);
    EXPECT_EQ (record.getMallocs(), 1u);
    EXPECT_EQ (record.getDistinctMutexes(), 2u);
}
