// SPDX-License-Identifier: AGPL-3.0-or-later
// Only the link icon takes the mouse; the rest of the bar lets clicks through to the panel.
#include "editor/DrawableBar.h"

#include "EditorData.h"

DrawableBar::DrawableBar()
{
    logo.loadPathFromData (EditorData::link_path, (size_t) EditorData::link_pathSize);
}

DrawableBar::~DrawableBar() = default;

void DrawableBar::mouseEnter (const juce::MouseEvent&)
{
    nameColour = juce::Colour (0xbb11aabb);
    repaint();
}

void DrawableBar::mouseExit (const juce::MouseEvent&)
{
    nameColour = juce::Colour (0xff111111);
    repaint();
}

void DrawableBar::mouseDown (const juce::MouseEvent&)
{
    setMouseCursor (juce::MouseCursor::WaitCursor);
    if (! link.launchInDefaultBrowser())
        juce::AlertWindow::showMessageBoxAsync (juce::MessageBoxIconType::WarningIcon, "No browser",
                                                "Website unreachable.", "OK");
}

void DrawableBar::mouseUp (const juce::MouseEvent&)
{
    setMouseCursor (juce::MouseCursor::NormalCursor);
}

bool DrawableBar::hitTest (int x, int y)
{
    return linkArea.contains ((float) x, (float) y);
}

void DrawableBar::paint (juce::Graphics& g)
{
    const float w = (float) getWidth(), h = (float) getHeight();

    g.setGradientFill (juce::ColourGradient (juce::Colour (0xe6ffffff), 40.0f, 200.0f, juce::Colour (0xff111111), 800.0f, 200.0f, false));
    g.fillRect (0.0f, 0.0f, w, h);

    g.setOpacity (1.0f);
    if (brandImage == nullptr || ! brandImage->isValid())
        return;

    g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
    const float ih = 0.9f * h;
    const float iw = (float) juce::roundToInt (ih * (float) brandImage->getWidth() / (float) brandImage->getHeight());
    const float m = 0.005f * w;
    g.drawImage (*brandImage, { m, 0.09f * h, iw, ih }, juce::RectanglePlacement::stretchToFit);

    const int baseline = (int) (0.752f * h);
    g.setFont (font.withStyle (juce::Font::plain).withHeight (0.6f * h).withExtraKerningFactor (-0.01f).boldened());
    g.setColour (juce::Colour (0xbb555555));
    g.drawSingleLineText ("Brusaline", (int) (2.0f * m + iw), baseline);

    nameLayout.clear();
    nameLayout.addLineOfText (font.withHeight (0.6f * h * 1.2f), productName, 0.41f * w, 0.752f * h);
    g.setColour (nameColour);
    nameLayout.draw (g);

    const auto bounds = nameLayout.getBoundingBox (0, -1, true);
    linkArea = { 2.0f * m + bounds.getRight(), (h - 0.7f * h) / 2.0f, 0.7f * h, 0.7f * h };
    if (! logo.isEmpty())
        g.fillPath (logo, logo.getTransformToScaleToFit (linkArea, true));

    g.setFont (font.withHeight (0.5f * h));
    g.setColour (juce::Colour (0xff484848));
    g.drawSingleLineText (versionText, (int) w, baseline, juce::Justification::right);
}
