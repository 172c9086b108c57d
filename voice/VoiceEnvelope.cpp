// SPDX-License-Identifier: AGPL-3.0-or-later
// Block-rate parts of the voice envelope.
#include "voice/VoiceEnvelope.h"

#include <algorithm>
#include <cmath>
#include <math.h>

void VoiceEnvelope::setParameters (float attackParameter, float decayParameter, float sustainParameter, float releaseParameter)
{
    // The small offset keeps a zero attack or decay from clicking; a zero release is meant to cut.
    attackSeconds = attackParameter + 0.0014f;
    decaySeconds = decayParameter + 0.0014f;
    sustainValue = sustainParameter < 0.001f ? 0.0f : sustainParameter;
    releaseSeconds = releaseParameter;
    updateEnvelopeCoefficients();
}

void VoiceEnvelope::updateEnvelopeCoefficients()
{
    // Aiming a little past 1 from the present level makes the per-block attack bend like an exponential.
    attackStep = (1.01f - level) / std::max (sampleRate * attackSeconds, 0.0001f);
    const float L = -logf ((targetRatio + 1.0f) / targetRatio);
    decayCoefficient = expf (L / (decaySeconds * sampleRate));
    decayBase = (sustainValue - 0.0001f) * (1.0f - decayCoefficient);
    // A release of zero divides to minus infinity, giving a coefficient of zero: a one-sample release.
    releaseCoefficient = expf (L / (releaseSeconds * sampleRate));
    releaseBase = (1.0f - releaseCoefficient) * -0.0001f;
}

void VoiceEnvelope::noteReleased (bool wasHeld)
{
    if (wasHeld)
        state = level > 0.0f ? release : idle;
    else if (level < 0.001f)
        state = idle;
}
