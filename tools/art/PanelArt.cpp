// SPDX-License-Identifier: AGPL-3.0-or-later
// A dark indigo panel with engraved module frames, amber indicator lamps and spun-metal knobs.
#include "tools/art/PanelArt.h"

using namespace juce;

namespace
{
const Colour legendColour (0xff99aaff);
const Colour amber (0xffffa500);

bool writePng (const Image& image, const File& file)
{
    file.deleteFile();
    FileOutputStream stream (file);
    if (! stream.openedOk())
        return false;
    PNGImageFormat png;
    return png.writeImageToStream (image, stream);
}

bool writePath (const Path& path, const File& file)
{
    file.deleteFile();
    FileOutputStream stream (file);
    if (! stream.openedOk())
        return false;
    path.writePathToStream (stream);
    return true;
}

// A two-frame strip: the painter is called once per frame with the frame's area.
template <typename Painter>
Image drawStrip (int frameWidth, int frameHeight, Painter&& paintFrame)
{
    Image strip (Image::ARGB, frameWidth, frameHeight * 2, true);
    Graphics g (strip);
    for (int frame = 0; frame < 2; ++frame)
    {
        Graphics::ScopedSaveState state (g);
        g.reduceClipRegion (0, frame * frameHeight, frameWidth, frameHeight);
        g.setOrigin (0, frame * frameHeight);
        paintFrame (g, Rectangle<float> ((float) frameWidth, (float) frameHeight), frame == 1);
    }
    return strip;
}

void fillLamp (Graphics& g, Point<float> centre, float radius, bool lit)
{
    const auto lens = Rectangle<float> (radius * 2.0f, radius * 2.0f).withCentre (centre);
    if (lit)
    {
        g.setGradientFill (ColourGradient (Colour (0x90ffb020), centre, Colour (0x00ff8000), centre.translated (radius * 1.9f, 0), true));
        g.fillEllipse (lens.expanded (radius * 0.9f));
        g.setGradientFill (ColourGradient (Colour (0xfffff0b0), centre.translated (0, -radius * 0.2f),
                                           Colour (0xffff7a00), centre.translated (radius, radius * 0.6f), true));
    }
    else
    {
        g.setGradientFill (ColourGradient (Colour (0xff5a4020), centre.translated (0, -radius * 0.3f),
                                           Colour (0xff1c1408), centre.translated (radius, radius), true));
    }
    g.fillEllipse (lens);
    g.setGradientFill (ColourGradient (Colours::white.withAlpha (lit ? 0.7f : 0.35f), centre.translated (-radius * 0.3f, -radius * 0.55f),
                                       Colours::white.withAlpha (0.0f), centre.translated (-radius * 0.3f, radius * 0.1f), false));
    g.fillEllipse (lens.reduced (radius * 0.3f, radius * 0.2f).translated (-radius * 0.05f, -radius * 0.25f).withHeight (radius * 0.6f));
}

Path arrowHead (Rectangle<float> box, bool pointsRight)
{
    Path p;
    if (pointsRight)
        p.addTriangle (box.getX(), box.getY(), box.getRight(), box.getCentreY(), box.getX(), box.getBottom());
    else
        p.addTriangle (box.getRight(), box.getY(), box.getX(), box.getCentreY(), box.getRight(), box.getBottom());
    return p;
}
} // namespace

PanelArt::PanelArt (Typeface::Ptr tf) : typeface (std::move (tf)) {}

Font PanelArt::font (float height, bool bold) const
{
    auto options = FontOptions().withHeight (height).withStyle (bold ? "Bold" : "Regular");
    if (typeface != nullptr)
        options = options.withTypeface (typeface);
    Font f (options);
    return bold ? f.boldened() : f;
}

bool PanelArt::writeAll (const File& folder) const
{
    const auto panel = drawPanel (true);
    bool ok = writePng (panel, folder.getChildFile ("panel.png"));
    ok = writePng (panel, folder.getChildFile ("picture_key.png")) && ok;
    ok = writePng (drawPanel (false), folder.getChildFile ("plain_key.png")) && ok;
    ok = writePng (drawKnobFace(), folder.getChildFile ("knob_face.png")) && ok;
    ok = writePng (drawModuleSwitch(), folder.getChildFile ("module_switch.png")) && ok;
    ok = writePng (drawOctaveSwitch(), folder.getChildFile ("octave_switch.png")) && ok;
    ok = writePng (drawReverseSwitch(), folder.getChildFile ("reverse_switch.png")) && ok;
    ok = writePng (drawPreSwitch(), folder.getChildFile ("pre_switch.png")) && ok;
    ok = writePng (drawTapButton(), folder.getChildFile ("tap_button.png")) && ok;
    ok = writePng (drawBrandPicture(), folder.getChildFile ("brand_bar.png")) && ok;
    ok = writePath (undoShape(), folder.getChildFile ("undo.path")) && ok;
    ok = writePath (redoShape(), folder.getChildFile ("redo.path")) && ok;
    ok = writePath (linkShape(), folder.getChildFile ("link.path")) && ok;
    return ok;
}

//==============================================================================
void PanelArt::drawLegend (Graphics& g, const String& text, Rectangle<float> area, Justification justification) const
{
    g.setFont (font (9.0f, true).withExtraKerningFactor (0.12f));
    g.setColour (legendColour.withAlpha (0.75f));
    g.drawText (text, area, justification, false);
}

void PanelArt::drawModuleFrame (Graphics& g, Rectangle<float> area, const String& title, bool textured) const
{
    const float corner = 7.0f;
    g.setColour (Colours::black.withAlpha (0.45f));
    g.fillRoundedRectangle (area.translated (0.0f, 1.5f).expanded (0.5f), corner);

    if (textured)
        g.setGradientFill (ColourGradient (Colour (0xff2a3062), 0.0f, area.getY(), Colour (0xff181c3a), 0.0f, area.getBottom(), false));
    else
        g.setColour (Colour (0xff222850));
    g.fillRoundedRectangle (area, corner);

    g.setColour (Colours::white.withAlpha (0.07f));
    g.drawLine (area.getX() + corner, area.getY() + 1.0f, area.getRight() - corner, area.getY() + 1.0f, 1.0f);
    g.setColour (Colour (0xff4b5596).withAlpha (0.85f));
    g.drawRoundedRectangle (area.reduced (0.5f), corner, 1.0f);

    if (title.isEmpty())
        return;

    const auto f = font (10.0f, true).withExtraKerningFactor (0.22f);
    const float textWidth = GlyphArrangement::getStringWidth (f, title) + 4.0f;
    const float lineY = area.getY() + 11.5f;
    const float cx = area.getCentreX();
    g.setColour (Colour (0xff4b5596).withAlpha (0.7f));
    g.drawLine (area.getX() + 10.0f, lineY, cx - textWidth / 2.0f - 6.0f, lineY, 0.8f);
    g.drawLine (cx + textWidth / 2.0f + 6.0f, lineY, area.getRight() - 10.0f, lineY, 0.8f);
    g.setFont (f);
    g.setColour (legendColour);
    g.drawText (title, Rectangle<float> (cx - textWidth / 2.0f - 4.0f, area.getY() + 4.0f, textWidth + 8.0f, 15.0f),
                Justification::centred, false);
}

void PanelArt::drawWordmark (Graphics& g, Rectangle<float> area, bool textured) const
{
    // A folded sine: the voice's wave folder, drawn as the product's mark.
    Path wave;
    const float left = area.getX() + 14.0f, right = area.getRight() - 14.0f, mid = area.getY() + 34.0f;
    for (int i = 0; i <= 200; ++i)
    {
        const float t = (float) i / 200.0f;
        // Two cycles of a sine driven past the fold: each crest turns back on itself.
        float s = 1.6f * std::sin (MathConstants<float>::twoPi * 2.0f * t);
        if (s > 1.0f) s = 2.0f - s;
        if (s < -1.0f) s = -2.0f - s;
        const Point<float> p (left + t * (right - left), mid - 16.0f * s);
        if (i == 0) wave.startNewSubPath (p); else wave.lineTo (p);
    }
    if (textured)
    {
        g.setColour (amber.withAlpha (0.18f));
        g.strokePath (wave, PathStrokeType (5.0f, PathStrokeType::curved, PathStrokeType::rounded));
    }
    g.setColour (amber.withAlpha (0.85f));
    g.strokePath (wave, PathStrokeType (1.6f, PathStrokeType::curved, PathStrokeType::rounded));

    g.setFont (font (30.0f, true).withExtraKerningFactor (0.04f));
    g.setColour (Colour (0xffd8dcf4));
    g.drawText ("ondrivel", Rectangle<float> (area.getX(), area.getY() + 54.0f, area.getWidth(), 34.0f), Justification::centred, false);
    g.setFont (font (8.5f, true).withExtraKerningFactor (0.25f));
    g.setColour (legendColour.withAlpha (0.8f));
    g.drawText ("PHASE MODULATION SYNTH", Rectangle<float> (area.getX(), area.getY() + 88.0f, area.getWidth(), 12.0f),
                Justification::centred, false);
}

Image PanelArt::drawPanel (bool textured) const
{
    Image image (Image::ARGB, 1760, 972, true);
    Graphics g (image);
    g.addTransform (AffineTransform::scale (2.0f));

    if (textured)
    {
        ColourGradient base (Colour (0xff2c3263), 0.0f, 0.0f, Colour (0xff0f1226), 0.0f, 486.0f, false);
        base.addColour (0.55, Colour (0xff1d2147));
        g.setGradientFill (base);
        g.fillRect (0, 0, 880, 486);
        // Brushed metal: many faint horizontal strokes.
        Random rng (20261123);
        for (int i = 0; i < 2600; ++i)
        {
            const float y = rng.nextFloat() * 486.0f, x = rng.nextFloat() * 880.0f, len = 30.0f + rng.nextFloat() * 220.0f;
            g.setColour ((rng.nextBool() ? Colours::white : Colours::black).withAlpha (0.012f + rng.nextFloat() * 0.025f));
            g.drawLine (x, y, x + len, y, 0.5f);
        }
        g.setGradientFill (ColourGradient (Colour (0x303d4aa0), 440.0f, 90.0f, Colour (0x003d4aa0), 440.0f, 520.0f, true));
        g.fillRect (0, 0, 880, 486);
    }
    else
    {
        g.fillAll (Colour (0xff1b1f40));
    }

    drawModuleFrame (g, { 6.0f, 8.0f, 178.0f, 172.0f }, "OCTAVER", textured);
    drawModuleFrame (g, { 6.0f, 186.0f, 178.0f, 114.0f }, {}, textured);
    drawModuleFrame (g, { 188.0f, 8.0f, 318.0f, 292.0f }, "REVERSE DELAY", textured);
    drawModuleFrame (g, { 512.0f, 8.0f, 180.0f, 292.0f }, "FLANGER", textured);
    drawModuleFrame (g, { 696.0f, 8.0f, 178.0f, 292.0f }, "OUTPUT", textured);
    drawModuleFrame (g, { 6.0f, 304.0f, 868.0f, 97.0f }, {}, textured);

    drawWordmark (g, { 6.0f, 190.0f, 178.0f, 110.0f }, textured);

    // Engraved legends for the switches, which carry no name labels of their own.
    drawLegend (g, "8VB / 8VA", { 124.0f, 145.0f, 60.0f, 12.0f }, Justification::centred);
    drawLegend (g, "REVERSE", { 311.0f, 54.0f, 60.0f, 12.0f }, Justification::centred);
    drawLegend (g, "PRE", { 628.0f, 36.0f, 40.0f, 12.0f }, Justification::centredLeft);
    drawLegend (g, "SYNC", { 392.0f, 193.0f, 34.0f, 12.0f }, Justification::centredRight);
    drawLegend (g, "ON", { 34.0f, 36.0f, 30.0f, 12.0f }, Justification::centredLeft);
    drawLegend (g, "ON", { 230.0f, 36.0f, 30.0f, 12.0f }, Justification::centredLeft);
    drawLegend (g, "ON", { 572.0f, 36.0f, 20.0f, 12.0f }, Justification::centredLeft);

    // Voice row: oscillator, envelope and output groups, split by engraved rules.
    g.setColour (Colour (0xff4b5596).withAlpha (0.6f));
    g.drawLine (352.5f, 312.0f, 352.5f, 394.0f, 0.8f);
    g.drawLine (692.5f, 312.0f, 692.5f, 394.0f, 0.8f);

    // A recess for the preset toolbar and a shelf under the keys.
    g.setColour (Colours::black.withAlpha (0.35f));
    g.fillRoundedRectangle (50.0f, 403.0f, 780.0f, 26.0f, 3.0f);
    g.setColour (Colour (0xff0b0d1c));
    g.fillRect (0.0f, 452.0f, 880.0f, 34.0f);
    g.setColour (Colour (0xff4b5596).withAlpha (0.5f));
    g.drawLine (0.0f, 452.5f, 880.0f, 452.5f, 1.0f);
    return image;
}

//==============================================================================
Image PanelArt::drawKnobFace() const
{
    Image image (Image::ARGB, 480, 480, true);
    Graphics g (image);
    const Point<float> c (240.0f, 240.0f);
    const auto circle = [&] (float r) { return Rectangle<float> (2.0f * r, 2.0f * r).withCentre (c); };

    // Knurled skirt.
    g.setGradientFill (ColourGradient (Colour (0xff9aa0c4), 120.0f, 40.0f, Colour (0xff20233a), 380.0f, 450.0f, false));
    g.fillEllipse (circle (238.0f));
    for (int i = 0; i < 72; ++i)
    {
        const float a = MathConstants<float>::twoPi * (float) i / 72.0f;
        Path ridge;
        ridge.addPieSegment (circle (236.0f), a, a + MathConstants<float>::twoPi / 144.0f, 0.84f);
        g.setColour (Colours::black.withAlpha (0.28f));
        g.fillPath (ridge);
    }
    g.setColour (Colours::black.withAlpha (0.7f));
    g.drawEllipse (circle (236.0f), 3.0f);

    // Spun-metal cap.
    g.setGradientFill (ColourGradient (Colour (0xff7a81ad), 160.0f, 90.0f, Colour (0xff1f2340), 330.0f, 420.0f, false));
    g.fillEllipse (circle (196.0f));
    Random rng (480);
    for (float r = 8.0f; r < 194.0f; r += 2.5f)
    {
        g.setColour ((rng.nextBool() ? Colours::white : Colours::black).withAlpha (0.02f + rng.nextFloat() * 0.05f));
        g.drawEllipse (circle (r), 1.0f);
    }
    g.setGradientFill (ColourGradient (Colours::white.withAlpha (0.35f), 170.0f, 120.0f, Colours::white.withAlpha (0.0f), 260.0f, 260.0f, true));
    g.fillEllipse (circle (196.0f));
    g.setColour (Colours::black.withAlpha (0.55f));
    g.drawEllipse (circle (196.0f), 4.0f);
    g.setColour (Colours::white.withAlpha (0.18f));
    g.drawEllipse (circle (192.0f).translated (0.0f, 2.0f), 2.0f);
    return image;
}

Image PanelArt::drawModuleSwitch() const
{
    return drawStrip (116, 116, [] (Graphics& g, Rectangle<float> area, bool on)
    {
        const auto c = area.getCentre();
        const auto bezel = area.reduced (6.0f);
        g.setGradientFill (ColourGradient (Colour (0xff3e4576), 0.0f, bezel.getY(), Colour (0xff0c0e1e), 0.0f, bezel.getBottom(), false));
        g.fillEllipse (bezel);
        g.setColour (Colours::black.withAlpha (0.8f));
        g.drawEllipse (bezel.reduced (1.5f), 3.0f);
        fillLamp (g, c, 34.0f, on);
    });
}

Image PanelArt::drawOctaveSwitch() const
{
    return drawStrip (348, 348, [this] (Graphics& g, Rectangle<float> area, bool up)
    {
        const auto key = area.reduced (14.0f);
        g.setColour (Colours::black.withAlpha (0.6f));
        g.fillRoundedRectangle (key.translated (0.0f, 8.0f), 44.0f);
        g.setGradientFill (ColourGradient (Colour (0xff4a5286), 0.0f, key.getY(), Colour (0xff1b1f3d), 0.0f, key.getBottom(), false));
        g.fillRoundedRectangle (key, 44.0f);
        g.setColour (Colour (0xff6b76c0));
        g.drawRoundedRectangle (key.reduced (3.0f), 42.0f, 6.0f);

        // Chevron pointing the way of the octave, lit amber when it goes up.
        Path chevron;
        const float cx = key.getCentreX(), cy = key.getY() + 110.0f, s = up ? -1.0f : 1.0f;
        chevron.startNewSubPath (cx - 70.0f, cy - s * 30.0f);
        chevron.lineTo (cx, cy + s * 30.0f);
        chevron.lineTo (cx + 70.0f, cy - s * 30.0f);
        g.setColour (up ? amber : Colour (0xffaab4ee));
        g.strokePath (chevron, PathStrokeType (22.0f, PathStrokeType::mitered, PathStrokeType::rounded));
        g.setFont (font (104.0f, true));
        g.drawText (up ? "8va" : "8vb", key.withTrimmedTop (150.0f).withTrimmedBottom (20.0f), Justification::centred, false);
    });
}

Image PanelArt::drawReverseSwitch() const
{
    return drawStrip (232, 116, [] (Graphics& g, Rectangle<float> area, bool reverse)
    {
        const auto track = area.reduced (8.0f, 14.0f);
        g.setGradientFill (ColourGradient (Colour (0xff080a16), 0.0f, track.getY(), Colour (0xff262b52), 0.0f, track.getBottom(), false));
        g.fillRoundedRectangle (track, track.getHeight() / 2.0f);
        g.setColour (Colour (0xff4b5596));
        g.drawRoundedRectangle (track.reduced (1.5f), track.getHeight() / 2.0f, 3.0f);

        const float thumbSize = track.getHeight() - 10.0f;
        const auto thumb = Rectangle<float> (thumbSize, thumbSize)
                               .withCentre ({ reverse ? track.getRight() - thumbSize / 2.0f - 5.0f : track.getX() + thumbSize / 2.0f + 5.0f,
                                              track.getCentreY() });
        g.setGradientFill (ColourGradient (Colour (0xffc6cbe6), 0.0f, thumb.getY(), Colour (0xff5a6090), 0.0f, thumb.getBottom(), false));
        g.fillEllipse (thumb);
        g.setColour (Colours::black.withAlpha (0.6f));
        g.drawEllipse (thumb, 2.0f);

        // The arrow on the free side shows the direction of playback.
        const auto free = reverse ? track.withTrimmedRight (thumbSize + 10.0f) : track.withTrimmedLeft (thumbSize + 10.0f);
        const auto box = Rectangle<float> (42.0f, 44.0f).withCentre (free.getCentre());
        g.setColour (reverse ? amber : Colour (0xffaab4ee));
        g.fillPath (arrowHead (box, ! reverse));
        g.fillRect (reverse ? box.getRight() - 2.0f : box.getX() - 22.0f, box.getCentreY() - 5.0f, 24.0f, 10.0f);
    });
}

Image PanelArt::drawPreSwitch() const
{
    return drawStrip (116, 90, [] (Graphics& g, Rectangle<float> area, bool pre)
    {
        const auto track = area.reduced (6.0f, 12.0f);
        g.setGradientFill (ColourGradient (Colour (0xff080a16), 0.0f, track.getY(), Colour (0xff262b52), 0.0f, track.getBottom(), false));
        g.fillRoundedRectangle (track, track.getHeight() / 2.0f);
        g.setColour (pre ? amber.withAlpha (0.9f) : Colour (0xff4b5596));
        g.drawRoundedRectangle (track.reduced (1.5f), track.getHeight() / 2.0f, 3.0f);
        const float thumbSize = track.getHeight() - 10.0f;
        const auto thumb = Rectangle<float> (thumbSize, thumbSize)
                               .withCentre ({ pre ? track.getRight() - thumbSize / 2.0f - 5.0f : track.getX() + thumbSize / 2.0f + 5.0f,
                                              track.getCentreY() });
        if (pre)
            fillLamp (g, thumb.getCentre(), thumbSize / 2.0f, true);
        else
        {
            g.setGradientFill (ColourGradient (Colour (0xffc6cbe6), 0.0f, thumb.getY(), Colour (0xff5a6090), 0.0f, thumb.getBottom(), false));
            g.fillEllipse (thumb);
        }
        g.setColour (Colours::black.withAlpha (0.6f));
        g.drawEllipse (thumb, 2.0f);
    });
}

Image PanelArt::drawTapButton() const
{
    return drawStrip (116, 116, [] (Graphics& g, Rectangle<float> area, bool pressed)
    {
        auto pad = area.reduced (6.0f);
        g.setColour (Colours::black.withAlpha (0.6f));
        g.fillRoundedRectangle (pad.translated (0.0f, 4.0f), 18.0f);
        if (pressed)
            pad = pad.translated (0.0f, 3.0f);
        g.setGradientFill (ColourGradient (pressed ? Colour (0xffc3c7d6) : Colour (0xffeceef5), 0.0f, pad.getY(),
                                           pressed ? Colour (0xff9398ae) : Colour (0xffb7bccd), 0.0f, pad.getBottom(), false));
        g.fillRoundedRectangle (pad, 18.0f);
        g.setColour (pressed ? amber : Colour (0xff5c6280));
        g.drawRoundedRectangle (pad.reduced (2.0f), 16.0f, pressed ? 6.0f : 3.0f);
    });
}

Image PanelArt::drawBrandPicture() const
{
    Image image (Image::ARGB, 3084, 636, true);
    Graphics g (image);
    // A round badge holding a folded wave, trailed by fading wave ribbons.
    const Rectangle<float> badge (18.0f, 18.0f, 600.0f, 600.0f);
    g.setGradientFill (ColourGradient (Colour (0xff2c3263), 0.0f, badge.getY(), Colour (0xff0f1226), 0.0f, badge.getBottom(), false));
    g.fillEllipse (badge);
    g.setColour (amber);
    g.drawEllipse (badge.reduced (14.0f), 22.0f);

    const auto wavePath = [] (float left, float right, float mid, float amplitude, float cycles, float fold)
    {
        Path p;
        for (int i = 0; i <= 400; ++i)
        {
            const float t = (float) i / 400.0f;
            float s = fold * std::sin (MathConstants<float>::twoPi * cycles * t);
            if (s > 1.0f) s = 2.0f - s;
            if (s < -1.0f) s = -2.0f - s;
            const Point<float> pt (left + t * (right - left), mid - amplitude * s);
            if (i == 0) p.startNewSubPath (pt); else p.lineTo (pt);
        }
        return p;
    };
    g.setColour (Colour (0xffe8ebff));
    g.strokePath (wavePath (120.0f, 516.0f, 318.0f, 150.0f, 1.5f, 1.7f), PathStrokeType (34.0f, PathStrokeType::curved, PathStrokeType::rounded));

    for (int i = 0; i < 3; ++i)
    {
        const float alpha = 0.85f - 0.25f * (float) i;
        g.setColour (Colour (0xff1d2147).withAlpha (alpha));
        g.strokePath (wavePath (680.0f, 3060.0f, 318.0f, 190.0f - 55.0f * (float) i, 2.0f + (float) i, 1.0f),
                      PathStrokeType (30.0f - 8.0f * (float) i, PathStrokeType::curved, PathStrokeType::rounded));
    }
    return image;
}

//==============================================================================
Path PanelArt::undoShape()
{
    // A hooked arrow turning back to the left.
    Path arc;
    arc.addCentredArc (60.0f, 60.0f, 34.0f, 34.0f, 0.0f, -MathConstants<float>::halfPi * 0.1f, MathConstants<float>::pi * 1.05f, true);
    Path stroked;
    PathStrokeType (14.0f, PathStrokeType::curved, PathStrokeType::rounded).createStrokedPath (stroked, arc);
    stroked.addTriangle (0.0f, 52.0f, 50.0f, 20.0f, 44.0f, 80.0f);
    return stroked;
}

Path PanelArt::redoShape()
{
    auto p = undoShape();
    p.applyTransform (AffineTransform::scale (-1.0f, 1.0f).translated (120.0f, 0.0f));
    return p;
}

Path PanelArt::linkShape()
{
    // A globe: the way out to the web.
    Path p;
    PathStrokeType stroke (8.0f);
    Path outline;
    outline.addEllipse (4.0f, 4.0f, 92.0f, 92.0f);
    outline.addEllipse (28.0f, 4.0f, 44.0f, 92.0f);
    outline.startNewSubPath (4.0f, 50.0f);
    outline.lineTo (96.0f, 50.0f);
    outline.startNewSubPath (50.0f, 4.0f);
    outline.lineTo (50.0f, 96.0f);
    outline.startNewSubPath (12.0f, 26.0f);
    outline.lineTo (88.0f, 26.0f);
    outline.startNewSubPath (12.0f, 74.0f);
    outline.lineTo (88.0f, 74.0f);
    stroke.createStrokedPath (p, outline);
    return p;
}
