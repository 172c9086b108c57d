// SPDX-License-Identifier: AGPL-3.0-or-later
// The voice's amplitude envelope: linear attack re-aimed every block, ratio-style decay and release.
#pragma once

class VoiceEnvelope
{
public:
    enum State : int
    {
        attack = 0,
        decay = 1,
        sustain = 2,
        release = 3,
        idle = 4
    };

    // Copies the four times/levels from the parameter values and re-derives the slopes.
    void setParameters (float attackParameter, float decayParameter, float sustainParameter, float releaseParameter);

    // Recomputes everything that depends on times, the present level or the sustain value.
    void updateEnvelopeCoefficients();

    // Goes to the release, or straight to idle when nothing is left to fade.
    void noteReleased (bool wasHeld);

    // One sample; returns the level scaled by the note's velocity gain.
    float process() noexcept
    {
        switch (state)
        {
            case attack:
                level += attackStep;
                if (level >= 1.0f)
                {
                    level = 1.0f;
                    state = decay;
                }
                break;

            case decay:
                level = level * decayCoefficient + decayBase;
                if (sustainValue > 0.0f && ! (level > sustainValue))
                    state = sustain;
                else
                    checkEnd();
                break;

            case sustain:
                level = sustainValue;
                break;

            case release:
                level = level * releaseCoefficient + releaseBase;
                checkEnd();
                break;

            case idle:
            default:
                break;
        }

        envelopeOut = level * velocityGain;
        return envelopeOut;
    }

    int state = idle;
    float attackSeconds = 0.001f;
    float decaySeconds = 0.0f;
    float sustainValue = 1.0f;
    float releaseSeconds = 0.001f;
    float attackStep = 0.01f;
    float decayCoefficient = 0.0f;
    float decayBase = 0.0f;
    float releaseCoefficient = 0.0f;
    float releaseBase = 0.0f;
    float targetRatio = 0.032f;
    float level = 0.0f;
    float velocityGain = 0.0f;
    float envelopeOut = 0.0f;
    float sampleRate = 44100.0f;

private:
    void checkEnd() noexcept
    {
        // The decay and release aim just below zero, so this is always reached in finite time.
        if (! (level > 0.00004f))
        {
            level = 0.0f;
            state = idle;
        }
    }
};
