// SPDX-License-Identifier: AGPL-3.0-or-later
// Tilt equaliser: a band-pass of two one-poles per channel. (Placeholder.)
#pragma once

class TiltEqualiser
{
public:
    void invalidate() { lastTilt = -2.0f; }
    void setupBlock (float tilt, double sampleRate);
    float lastTilt = -2.0f;
};
