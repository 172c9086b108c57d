// SPDX-License-Identifier: AGPL-3.0-or-later
#include "voice/SynthVoice.h"
#include "voice/SynthSound.h"

void SynthVoice::prepareVoice (double sampleRate) { setCurrentPlaybackSampleRate (sampleRate); }
void SynthVoice::pushParameters (const ParameterValues&) {}
bool SynthVoice::canPlaySound (juce::SynthesiserSound* sound) { return dynamic_cast<SynthSound*> (sound) != nullptr; }
void SynthVoice::startNote (int, float, juce::SynthesiserSound*, int) {}
void SynthVoice::stopNote (float, bool) { clearCurrentNote(); }
void SynthVoice::pitchWheelMoved (int) {}
void SynthVoice::controllerMoved (int, int) {}
void SynthVoice::renderNextBlock (juce::AudioBuffer<float>&, int, int) {}
