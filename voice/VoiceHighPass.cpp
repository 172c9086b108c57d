// SPDX-License-Identifier: AGPL-3.0-or-later
#include "voice/VoiceHighPass.h"

#include <juce_dsp/juce_dsp.h>

void VoiceHighPass::prepare (double sampleRate, float cornerHz)
{
    const auto coefficients = juce::dsp::IIR::Coefficients<float>::makeHighPass (sampleRate, cornerHz, 0.707f);
    const float* c = coefficients->getRawCoefficients();
    b0 = c[0];
    b1 = c[1];
    b2 = c[2];
    a1 = c[3];
    a2 = c[4];
    s0 = 0.0f;
    s1 = 0.0f;
}
