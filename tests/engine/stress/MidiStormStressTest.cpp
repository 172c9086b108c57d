// SPDX-License-Identifier: AGPL-3.0-or-later
// MIDI that no keyboard player sends but sequencers and broken controllers do: whole keyboards in
// one block, more notes than voices, controller floods, note-offs without notes, every channel.
#include "engine/stress/StressCases.h"

namespace
{
using Storm = std::function<void (juce::MidiBuffer&, juce::int64 block, int n, juce::Random&)>;

struct Case
{
    const char* name;
    Storm storm;
};

void allKeys (juce::MidiBuffer& midi, int channel, bool on, int position)
{
    for (int note = 0; note < 128; ++note)
        midi.addEvent (on ? juce::MidiMessage::noteOn (channel, note, (juce::uint8) 127) : juce::MidiMessage::noteOff (channel, note),
                       position);
}

std::vector<Case> storms()
{
    return {
        { "128 notes on and off in one block",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random&) { if (b % 8 == 0) { allKeys (m, 1, true, 0); allKeys (m, 1, false, n - 1); } } },
        { "128 notes held, beyond the voice count",
          [] (juce::MidiBuffer& m, juce::int64 b, int, juce::Random&) { if (b == 0) allKeys (m, 1, true, 0); if (b == 150) allKeys (m, 1, false, 0); } },
        { "pitch wheel sweeps",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random&) {
              if (b == 0) allKeys (m, 1, true, 0);
              for (int i = 0; i < n; i += 4) m.addEvent (juce::MidiMessage::pitchWheel (1, (int) ((b * 997 + i * 61) % 16384)), i);
          } },
        { "mod wheel (controller 1) flood",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              if (b % 20 == 0) m.addEvent (juce::MidiMessage::noteOn (1, 36 + r.nextInt (60), (juce::uint8) 100), 0);
              for (int i = 0; i < n; i += 8) m.addEvent (juce::MidiMessage::controllerEvent (1, 1, r.nextInt (128)), i);
          } },
        { "all notes off (controller 123) amid chords",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              for (int i = 0; i < 6; ++i) m.addEvent (juce::MidiMessage::noteOn (1 + r.nextInt (16), r.nextInt (128), (juce::uint8) 90), r.nextInt (n));
              if (b % 3 == 0) m.addEvent (juce::MidiMessage::allNotesOff (1 + r.nextInt (16)), r.nextInt (n));
          } },
        { "sustain pedal over note-offs",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              m.addEvent (juce::MidiMessage::controllerEvent (1, 64, (b / 10) % 2 == 0 ? 127 : 0), 0);
              const int note = r.nextInt (128);
              m.addEvent (juce::MidiMessage::noteOn (1, note, (juce::uint8) 100), 0);
              m.addEvent (juce::MidiMessage::noteOff (1, note), n - 1);
          } },
        { "note-offs never preceded by note-ons",
          [] (juce::MidiBuffer& m, juce::int64, int n, juce::Random& r) {
              for (int i = 0; i < 16; ++i) m.addEvent (juce::MidiMessage::noteOff (1 + r.nextInt (16), r.nextInt (128)), r.nextInt (n));
          } },
        { "notes on all 16 channels",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              for (int ch = 1; ch <= 16; ++ch)
              {
                  const int note = 20 + r.nextInt (100);
                  m.addEvent (juce::MidiMessage::noteOn (ch, note, (juce::uint8) (1 + r.nextInt (127))), r.nextInt (n));
                  if (b % 4 == 3) m.addEvent (juce::MidiMessage::allNotesOff (ch), n - 1);
              }
          } },
        { "everything at once",
          [] (juce::MidiBuffer& m, juce::int64 b, int n, juce::Random& r) {
              for (int i = 0; i < 24; ++i)
              {
                  const int ch = 1 + r.nextInt (16), pos = r.nextInt (n);
                  switch (r.nextInt (7))
                  {
                      case 0: m.addEvent (juce::MidiMessage::noteOn (ch, r.nextInt (128), (juce::uint8) r.nextInt (128)), pos); break;
                      case 1: m.addEvent (juce::MidiMessage::noteOff (ch, r.nextInt (128)), pos); break;
                      case 2: m.addEvent (juce::MidiMessage::pitchWheel (ch, r.nextInt (16384)), pos); break;
                      case 3: m.addEvent (juce::MidiMessage::controllerEvent (ch, 1, r.nextInt (128)), pos); break;
                      case 4: m.addEvent (juce::MidiMessage::controllerEvent (ch, 64, r.nextInt (128)), pos); break;
                      case 5: m.addEvent (juce::MidiMessage::allNotesOff (ch), pos); break;
                      default: m.addEvent (juce::MidiMessage::allSoundOff (ch), pos); break;
                  }
              }
              if (b % 32 == 0) allKeys (m, 1 + r.nextInt (16), true, r.nextInt (n));
          } },
    };
}

StressStats runStorm (const Case& c, double rate, int blockSize, juce::int64 seed)
{
    juce::Random random (seed);
    StressRig rig (rate, blockSize);
    // The loud end of the chain, so that many voices at once reach every stage.
    for (int index : { ParameterIndex::bp1, ParameterIndex::bp2, ParameterIndex::bp3 })
        rig.setParameter (index, 1.0f);
    rig.setParameter (ParameterIndex::reverb, 1.0f);
    rig.setParameter (ParameterIndex::fdbk, 0.98f);

    juce::MidiBuffer midi;
    midi.ensureSize (65536);
    const auto total = (juce::int64) (rate * stressSeconds (0.5));
    juce::int64 block = 0;
    for (juce::int64 done = 0; done < total; done += blockSize, ++block)
    {
        midi.clear();
        c.storm (midi, block, blockSize, random);
        rig.render (blockSize, midi);
    }
    // Every note released, pedal up: the voices must be able to fall silent again.
    midi.clear();
    for (int ch = 1; ch <= 16; ++ch)
    {
        midi.addEvent (juce::MidiMessage::controllerEvent (ch, 64, 0), 0);
        allKeys (midi, ch, false, 0);
    }
    rig.render (blockSize, midi);
    return rig.stats;
}
} // namespace

TEST (Stress, MidiStormsStayFiniteAndAllocationFree)
{
    juce::int64 seed = 500;
    for (const auto& c : storms())
        for (int blockSize : { 7, 256 })
            stress::expectHealthy (juce::String (c.name) + ", block " + juce::String (blockSize),
                                   runStorm (c, 44100.0, blockSize, seed++));
}
