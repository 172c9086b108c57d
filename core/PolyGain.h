// SPDX-License-Identifier: AGPL-3.0-or-later
// The polyphony gain: a linear ramp shaped like juce::SmoothedValue<float>, advanced once per block.
#pragma once

#include <juce_core/juce_core.h>

class PolyGain
{
public:
    void reset (int steps)
    {
        stepsToTarget = steps;
        current = target;
        countdown = 0;
    }

    void setTarget (float newTarget)
    {
        if (juce::approximatelyEqual (newTarget, target))
            return;
        if (stepsToTarget <= 0)
        {
            current = target = newTarget;
            countdown = 0;
            return;
        }
        target = newTarget;
        countdown = stepsToTarget;
        step = (target - current) / (float) countdown;
    }

    float next()
    {
        if (countdown <= 0)
            return target;
        --countdown;
        if (countdown > 0)
            current += step;
        else
            current = target;
        return current;
    }

    float getTarget() const { return target; }
    float getCurrent() const { return current; }

private:
    float current = 1.0f;
    float target = 1.0f;
    int countdown = 0;
    float step = 0.0f;
    int stepsToTarget = 0;
};
