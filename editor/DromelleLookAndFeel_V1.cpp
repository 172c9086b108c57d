// SPDX-License-Identifier: AGPL-3.0-or-later
// Nothing is cached: the panel scales by transform, so paths are redrawn sharp at every width.
#include "editor/DromelleLookAndFeel_V1.h"

#include <juce_audio_utils/juce_audio_utils.h>

#include "EditorData.h"
#include "editor/DromelleLookAndFeel_V1_DocumentWindowButton.h"

namespace velkaro
{
using namespace juce;

DromelleLookAndFeel_V1::DromelleLookAndFeel_V1()
{
    knobFace = ImageCache::getFromMemory (EditorData::knob_face_png, EditorData::knob_face_pngSize);
    applyColourPalette();
}

void DromelleLookAndFeel_V1::applyColourPalette()
{
    const auto highlight = colour5.withAlpha ((uint8) 0x66);
    const struct { int id; Colour colour; } rows[] = {
        { TextButton::buttonColourId, colour1 },
        { TextButton::buttonOnColourId, colour5.darker (0.2f) },
        { TextButton::textColourOffId, colour4.darker (0.2f) },
        { TextButton::textColourOnId, colour6 },
        { ToggleButton::textColourId, colour4 },
        { ToggleButton::tickColourId, colour4 },
        { ToggleButton::tickDisabledColourId, colour4.withAlpha ((uint8) 0x80) },
        { TextEditor::backgroundColourId, colour1 },
        { TextEditor::textColourId, colour4 },
        { TextEditor::highlightColourId, highlight },
        { TextEditor::highlightedTextColourId, colour6 },
        { TextEditor::outlineColourId, colour3 },
        { TextEditor::focusedOutlineColourId, colour3 },
        { TextEditor::shadowColourId, colour3.withAlpha ((uint8) 0x38) },
        { CaretComponent::caretColourId, colour4 },
        { Label::backgroundColourId, Colour() },
        { Label::textColourId, colour4 },
        { Label::outlineColourId, Colour() },
        { Label::backgroundWhenEditingColourId, colour1 },
        { Label::textWhenEditingColourId, colour4 },
        { Label::outlineWhenEditingColourId, colour3 },
        { ScrollBar::backgroundColourId, Colour() },
        { ScrollBar::thumbColourId, colour5 },
        { ScrollBar::trackColourId, Colour() },
        { TreeView::backgroundColourId, colour1 },
        { TreeView::linesColourId, colour4.withAlpha ((uint8) 0x80) },
        { TreeView::dragAndDropIndicatorColourId, colour7 },
        { TreeView::selectedItemBackgroundColourId, highlight },
        { TreeView::oddItemsColourId, colour1 },
        { TreeView::evenItemsColourId, colour0.withAlpha ((uint8) 0x55) },
        { PopupMenu::backgroundColourId, colour0 },
        { PopupMenu::textColourId, colour4 },
        { PopupMenu::headerTextColourId, colour4 },
        { PopupMenu::highlightedTextColourId, colour6 },
        { PopupMenu::highlightedBackgroundColourId, highlight },
        { ComboBox::buttonColourId, colour0 },
        { ComboBox::outlineColourId, colour3 },
        { ComboBox::textColourId, colour4 },
        { ComboBox::backgroundColourId, colour1 },
        { ComboBox::arrowColourId, colour4 },
        { ComboBox::focusedOutlineColourId, colour7 },
        { PropertyComponent::backgroundColourId, colour0 },
        { PropertyComponent::labelTextColourId, colour4 },
        { TextPropertyComponent::backgroundColourId, colour1 },
        { TextPropertyComponent::textColourId, colour4 },
        { TextPropertyComponent::outlineColourId, colour3 },
        { BooleanPropertyComponent::backgroundColourId, colour1 },
        { BooleanPropertyComponent::outlineColourId, colour3 },
        { ListBox::backgroundColourId, colour1 },
        { ListBox::outlineColourId, colour3 },
        { ListBox::textColourId, colour4 },
        { Slider::backgroundColourId, colour1 },
        { Slider::thumbColourId, colour5 },
        { Slider::trackColourId, colour7 },
        { Slider::rotarySliderFillColourId, colour7 },
        { Slider::rotarySliderOutlineColourId, colour1 },
        { Slider::textBoxTextColourId, colour4 },
        { Slider::textBoxBackgroundColourId, colour1.withAlpha ((uint8) 0) },
        { Slider::textBoxHighlightColourId, highlight },
        { Slider::textBoxOutlineColourId, colour3 },
        { ResizableWindow::backgroundColourId, colour0 },
        { DocumentWindow::textColourId, colour4 },
        { AlertWindow::backgroundColourId, colour0 },
        { AlertWindow::textColourId, colour4 },
        { AlertWindow::outlineColourId, colour7 },
        { ProgressBar::backgroundColourId, colour1 },
        { ProgressBar::foregroundColourId, colour7 },
        { TooltipWindow::backgroundColourId, colour7 },
        { TooltipWindow::textColourId, colour6 },
        { TooltipWindow::outlineColourId, Colour() },
        { TabbedComponent::backgroundColourId, colour0 },
        { TabbedComponent::outlineColourId, colour3 },
        { TabbedButtonBar::tabOutlineColourId, colour3 },
        { TabbedButtonBar::frontOutlineColourId, colour7 },
        { Toolbar::backgroundColourId, colour0 },
        { Toolbar::separatorColourId, colour3 },
        { Toolbar::buttonMouseOverBackgroundColourId, highlight },
        { Toolbar::buttonMouseDownBackgroundColourId, colour7 },
        { Toolbar::labelTextColourId, colour4 },
        { Toolbar::editingModeOutlineColourId, colour7 },
        { HyperlinkButton::textColourId, colour9 },
        { GroupComponent::outlineColourId, colour3 },
        { GroupComponent::textColourId, colour4 },
        { BubbleComponent::backgroundColourId, colour7 },
        { BubbleComponent::outlineColourId, colour3 },
        { DirectoryContentsDisplayComponent::highlightColourId, highlight },
        { DirectoryContentsDisplayComponent::textColourId, colour4 },
        { DirectoryContentsDisplayComponent::highlightedTextColourId, colour6 },
        { FileSearchPathListComponent::backgroundColourId, colour1 },
        { FileChooserDialogBox::titleTextColourId, colour4 },
        { SidePanel::backgroundColour, colour0 },
        { SidePanel::titleTextColour, colour4 },
        { SidePanel::shadowBaseColour, colour3 },
        { SidePanel::dismissButtonNormalColour, colour4 },
        { SidePanel::dismissButtonOverColour, colour6 },
        { SidePanel::dismissButtonDownColour, colour5 },
        { ColourSelector::backgroundColourId, colour0 },
        { ColourSelector::labelTextColourId, colour4 },
        { KeyMappingEditorComponent::backgroundColourId, colour0 },
        { KeyMappingEditorComponent::textColourId, colour4 },
        { CodeEditorComponent::backgroundColourId, colour1 },
        { CodeEditorComponent::highlightColourId, highlight },
        { CodeEditorComponent::defaultTextColourId, colour4 },
        { CodeEditorComponent::lineNumberBackgroundId, colour0 },
        { CodeEditorComponent::lineNumberTextId, colour4 },
        { MidiKeyboardComponent::whiteNoteColourId, Colour (0xffffffff) },
        { MidiKeyboardComponent::blackNoteColourId, Colour (0xff000000) },
        { MidiKeyboardComponent::keySeparatorLineColourId, Colour (0x66000000) },
        { MidiKeyboardComponent::mouseOverKeyOverlayColourId, Colour (0x80ffff00) },
        { MidiKeyboardComponent::keyDownOverlayColourId, colour7 },
        { MidiKeyboardComponent::textLabelColourId, colour3 },
        { MidiKeyboardComponent::shadowColourId, colour3.withAlpha ((uint8) 0x4c) },
        { MidiKeyboardComponent::upDownButtonBackgroundColourId, colour0 },
        { MidiKeyboardComponent::upDownButtonArrowColourId, colour4 },
    };
    for (const auto& row : rows)
        setColour (row.id, row.colour);
}

//==============================================================================
void DromelleLookAndFeel_V1::drawRotarySlider (Graphics& g, int x, int y, int width, int height, float sliderPos,
                                               float rotaryStartAngle, float rotaryEndAngle, Slider& slider)
{
    drawKnob (g, x, y, width, height, sliderPos, rotaryStartAngle, rotaryEndAngle, slider, 16);
}

void DromelleLookAndFeel_V1::drawKnob (Graphics& g, int x, int y, int width, int height, float sliderPos,
                                       float startAngle, float endAngle, Slider& slider, int numTickIntervals)
{
    const float fx = (float) x, fy = (float) y, w = (float) width, h = (float) height;
    const bool enabled = slider.isEnabled();
    const bool hover = enabled && (slider.isMouseOverOrDragging());
    const float m = w * 0.089f;
    const float r = jmin (w / 2.0f, h / 2.0f) - 2.0f;
    const float cx = fx + w / 2.0f, cy = fy + h / 2.0f;
    const float angle = startAngle + sliderPos * (endAngle - startAngle);
    const auto thumb = slider.findColour (Slider::thumbColourId);

    const Rectangle<float> body (fx + m, fy + m, w - 2.0f * m, h - 2.0f * m);
    {
        Path shadow;
        shadow.addEllipse (body);
        DropShadow (Colour (0xe6000000), 1, {}).drawForPath (g, shadow);
    }

    if (r <= 12.0f)
    {
        g.setColour (slider.findColour (Slider::rotarySliderOutlineColourId).brighter (2.0f));
        g.fillEllipse (fx + 1.0f, fy + 1.0f, jmax (w - 2.0f, 0.0f), jmax (h - 2.0f, 0.0f));
        const float thickness = 2.0f * r * 0.1f;
        Path pointer;
        pointer.addRectangle (-thickness * 0.5f, -r, thickness, r);
        pointer.applyTransform (AffineTransform::rotation (angle).translated (cx, cy));
        g.setColour (enabled ? thumb.darker (0.9f).withAlpha (hover ? 1.0f : 0.9f) : Colour (0xff808080));
        g.fillPath (pointer);
        return;
    }

    if (knobFace.isValid())
        g.drawImage (knobFace, body.reduced (1.0f), RectanglePlacement::stretchToFit);

    {
        const float arcStart = slider.getMinimum() < 0.0 ? startAngle * 1.6666f : startAngle;
        Path arc;
        arc.addPieSegment (cx - r, cy - r, 2.0f * r, 2.0f * r, arcStart, angle, 0.9f);
        g.setColour (enabled ? slider.findColour (Slider::rotarySliderFillColourId).withAlpha (hover ? 1.0f : 0.9f)
                             : Colour (0x80808080));
        g.fillPath (arc);
    }

    {
        Path ticks;
        for (int i = 0; i <= numTickIntervals; ++i)
        {
            const float a = startAngle - 1.5708f + (endAngle - startAngle) * (float) i / (float) numTickIntervals;
            ticks.addLineSegment ({ cx + 0.95f * r * std::cos (a), cy + 0.95f * r * std::sin (a),
                                    cx + 0.99f * r * std::cos (a), cy + 0.99f * r * std::sin (a) },
                                  0.9f);
        }
        g.setColour (thumb.withAlpha ((uint8) (hover ? 0xe6 : 0x80)));
        g.strokePath (ticks, PathStrokeType (0.9f));
    }

    {
        Path pointer;
        pointer.addArrow ({ 0.2f * r, 0.0f, -0.99f * r, 0.0f }, 0.05f * w, 0.06f * w, 0.06f * w);
        pointer = pointer.createPathWithRoundedCorners (4.0f);
        const float knobRadius = 0.2f * r + 0.16f * w;
        pointer.addEllipse (-knobRadius, -knobRadius, 2.0f * knobRadius, 2.0f * knobRadius);
        pointer.applyTransform (AffineTransform::rotation (angle + 1.5708f).translated (cx, cy));

        if (enabled)
        {
            DropShadow (Colour (0xff000000), 4, {}).drawForPath (g, pointer);
            g.setColour (thumb.withAlpha (hover ? 1.0f : 0.9f));
        }
        else
        {
            g.setColour (Colour (0x80808080));
        }
        g.fillPath (pointer);
    }

    const float capRadius = 0.219f * w;
    g.setColour (slider.findColour (Slider::backgroundColourId));
    g.fillEllipse (cx - capRadius, cy - capRadius, 2.0f * capRadius, 2.0f * capRadius);
}

void DromelleLookAndFeel_V1::drawLinearSlider (Graphics& g, int x, int y, int width, int height, float sliderPos,
                                               float minSliderPos, float maxSliderPos, Slider::SliderStyle style,
                                               Slider& slider)
{
    if (style != Slider::LinearHorizontal)
    {
        LookAndFeel_V3::drawLinearSlider (g, x, y, width, height, sliderPos, minSliderPos, maxSliderPos, style, slider);
        return;
    }

    const float fx = (float) x, fy = (float) y, w = (float) width, h = (float) height;
    const float t = jmin (h * 0.25f, 2.0f);
    const float cy = fy + h / 2.0f;
    const auto background = slider.findColour (Slider::backgroundColourId);

    Path track;
    track.startNewSubPath (fx, cy);
    track.lineTo (fx + w, cy);
    g.setColour (background.darker (0.9f).withAlpha ((uint8) 0xff));
    g.strokePath (track, PathStrokeType (3.0f * t, PathStrokeType::curved, PathStrokeType::rounded));

    g.setColour (background.brighter (10.0f));
    g.drawRect (Rectangle<float> (fx, cy - 1.5f * t, w, 3.0f * t).expanded (4.0f), 0.4f);

    const bool bipolar = slider.getMinimum() < 0.0 && slider.getMaximum() > 0.0;
    Path valueBar;
    valueBar.startNewSubPath (bipolar ? fx + w / 2.0f : fx, cy);
    valueBar.lineTo (sliderPos, cy);
    g.setColour (slider.findColour (Slider::trackColourId).withSaturation (0.5f));
    g.strokePath (valueBar, PathStrokeType (2.0f * t, PathStrokeType::curved, PathStrokeType::rounded));

    const float thumbHeight = (float) getSliderThumbRadius (slider);
    const auto thumbArea = Rectangle<float> (0.7f * thumbHeight, thumbHeight).withCentre ({ sliderPos, cy });
    Path thumbShape;
    thumbShape.addRoundedRectangle (thumbArea, 0.9f);
    DropShadow (Colour (0x99000000), 3, { 0, 1 }).drawForPath (g, thumbShape);
    const auto thumb = slider.findColour (Slider::thumbColourId);
    g.setColour (thumb.darker (0.5f));
    g.fillPath (thumbShape);
    g.setColour (Colour (0xff111111));
    g.strokePath (thumbShape, PathStrokeType (0.5f));
    g.setColour (thumb);
    g.fillRect (Rectangle<float> (sliderPos - 1.0f, thumbArea.getY(), 2.0f, thumbArea.getHeight()));
}

int DromelleLookAndFeel_V1::getSliderThumbRadius (Slider& slider)
{
    return jmin (24, slider.isHorizontal() ? slider.getHeight() : slider.getWidth());
}

Label* DromelleLookAndFeel_V1::createSliderTextBox (Slider& slider)
{
    auto* label = LookAndFeel_V2::createSliderTextBox (slider);
    label->setColour (Label::textColourId, colour9);
    return label;
}

Button* DromelleLookAndFeel_V1::createSliderButton (Slider&, bool isIncrement)
{
    auto* button = new TextButton (String::charToString ((juce_wchar) (isIncrement ? 0xbb : 0xab)));
    button->setColour (TextButton::buttonColourId, colour2);
    button->setColour (TextButton::textColourOffId, colour7);
    return button;
}

Slider::SliderLayout DromelleLookAndFeel_V1::getSliderLayout (Slider& slider)
{
    // The framework's layout, with a smaller room kept free for the slider beside its text box.
    int minXSpace = 0, minYSpace = 0;
    const auto textBoxPos = slider.getTextBoxPosition();
    if (textBoxPos == Slider::TextBoxLeft || textBoxPos == Slider::TextBoxRight)
        minXSpace = 15;
    else
        minYSpace = 8;

    const auto localBounds = slider.getLocalBounds();
    const int textBoxWidth = jmax (0, jmin (slider.getTextBoxWidth(), localBounds.getWidth() - minXSpace));
    const int textBoxHeight = jmax (0, jmin (slider.getTextBoxHeight(), localBounds.getHeight() - minYSpace));

    Slider::SliderLayout layout;
    if (textBoxPos != Slider::NoTextBox)
    {
        if (slider.isBar())
        {
            layout.textBoxBounds = localBounds;
        }
        else
        {
            layout.textBoxBounds.setWidth (textBoxWidth);
            layout.textBoxBounds.setHeight (textBoxHeight);
            if (textBoxPos == Slider::TextBoxLeft)       layout.textBoxBounds.setX (0);
            else if (textBoxPos == Slider::TextBoxRight) layout.textBoxBounds.setX (localBounds.getWidth() - textBoxWidth);
            else                                         layout.textBoxBounds.setX ((localBounds.getWidth() - textBoxWidth) / 2);

            if (textBoxPos == Slider::TextBoxAbove)      layout.textBoxBounds.setY (0);
            else if (textBoxPos == Slider::TextBoxBelow) layout.textBoxBounds.setY (localBounds.getHeight() - textBoxHeight);
            else                                         layout.textBoxBounds.setY ((localBounds.getHeight() - textBoxHeight) / 2);
        }
    }

    layout.sliderBounds = localBounds;
    if (slider.isBar())
    {
        layout.sliderBounds.reduce (1, 1);
    }
    else
    {
        if (textBoxPos == Slider::TextBoxLeft)       layout.sliderBounds.removeFromLeft (textBoxWidth);
        else if (textBoxPos == Slider::TextBoxRight) layout.sliderBounds.removeFromRight (textBoxWidth);
        else if (textBoxPos == Slider::TextBoxAbove) layout.sliderBounds.removeFromTop (textBoxHeight);
        else if (textBoxPos == Slider::TextBoxBelow) layout.sliderBounds.removeFromBottom (textBoxHeight);

        const int thumbIndent = getSliderThumbRadius (slider);
        if (slider.isHorizontal())    layout.sliderBounds.reduce (thumbIndent, 0);
        else if (slider.isVertical()) layout.sliderBounds.reduce (0, thumbIndent);
    }
    return layout;
}

//==============================================================================
void DromelleLookAndFeel_V1::drawButtonTextIn (Graphics& g, TextButton& button, int inset, int top)
{
    g.setFont (getTextButtonFont (button, button.getHeight()));
    g.setColour (button.findColour (button.getToggleState() ? TextButton::textColourOnId : TextButton::textColourOffId)
                     .withMultipliedAlpha (button.isEnabled() ? 1.0f : 0.5f));
    if (button.getWidth() >= 3)
        g.drawFittedText (button.getButtonText(), 1, top, button.getWidth() - 2, button.getHeight() - 2 * inset,
                          Justification::centred, 1);
}

void DromelleLookAndFeel_V1::drawButtonText (Graphics& g, TextButton& button, bool, bool)
{
    const int d = jmin (roundToInt ((float) button.getHeight() * 0.1f), 1);
    drawButtonTextIn (g, button, d, d);
}

void DromelleLookAndFeel_V1::drawButtonBackground (Graphics& g, Button& button, const Colour& backgroundColour,
                                                   bool isMouseOverButton, bool isButtonDown)
{
    const float w = (float) button.getWidth(), h = (float) button.getHeight();
    auto colour = backgroundColour.withMultipliedAlpha (button.isEnabled() ? 1.0f : 0.5f);
    if (isMouseOverButton || isButtonDown)
        colour = colour.brighter (isButtonDown ? 0.2f : 0.0f);

    const bool left = button.isConnectedOnLeft(), right = button.isConnectedOnRight();
    const bool top = button.isConnectedOnTop(), bottom = button.isConnectedOnBottom();
    const Rectangle<float> area (1.0f, 1.0f, jmax (w - 2.0f, 0.0f), jmax (h - 2.0f, 0.0f));

    Path shape;
    shape.addRoundedRectangle (area.getX(), area.getY(), area.getWidth(), area.getHeight(), 1.2f, 1.2f,
                               ! (left || top), ! (right || top), ! (left || bottom), ! (right || bottom));
    g.setColour (colour);
    g.fillPath (shape);

    const auto outline = isButtonDown ? colour.brighter (0.5f) : button.findColour (ComboBox::outlineColourId);
    g.setColour (outline);
    g.strokePath (shape, PathStrokeType (0.5f));
    if (isButtonDown)
    {
        const float l = area.getX(), t = area.getY(), r = area.getRight(), b = area.getBottom();
        Path corners;
        corners.addTriangle (l, t, l + 2.0f, t, l, t + 2.0f);
        corners.addTriangle (r, t, r - 2.0f, t, r, t + 2.0f);
        corners.addTriangle (l, b, l + 2.0f, b, l, b - 2.0f);
        corners.addTriangle (r, b, r - 2.0f, b, r, b - 2.0f);
        g.fillPath (corners);
    }

    if (button.getToggleState() && ! top)
    {
        const float side = jmax (h - 2.0f, 0.0f) / 5.0f;
        g.setColour (Colour (0xffffa500));
        g.fillRect (1.0f, 1.0f, side, side);
    }
}

//==============================================================================
TextLayout DromelleLookAndFeel_V1::layoutTooltip (const String& text, Colour colour) const
{
    AttributedString s;
    s.setJustification (Justification::centredLeft);
    s.append (text, withDefaultMetrics (FontOptions (14.0f, Font::bold)), colour);
    TextLayout layout;
    layout.createLayoutWithBalancedLineLengths (s, 250.0f);
    return layout;
}

Rectangle<int> DromelleLookAndFeel_V1::getTooltipBounds (const String& tipText, Point<int> screenPos, Rectangle<int> parentArea)
{
    const auto layout = layoutTooltip (tipText, Colours::black);
    const int w = (int) (layout.getWidth() + 14.0f);
    const int h = (int) (layout.getHeight() + 10.0f);
    return Rectangle<int> (screenPos.x > parentArea.getCentreX() ? screenPos.x - (w + 12) : screenPos.x + 24,
                           screenPos.y > parentArea.getCentreY() ? screenPos.y - (h + 6) : screenPos.y + 6, w, h)
        .constrainedWithin (parentArea);
}

void DromelleLookAndFeel_V1::drawTooltip (Graphics& g, const String& text, int width, int height)
{
    g.fillAll (findColour (TooltipWindow::backgroundColourId));
    layoutTooltip (text, findColour (TooltipWindow::textColourId))
        .draw (g, Rectangle<float> ((float) width, (float) height).reduced (4.0f));
}

Button* DromelleLookAndFeel_V1::createDocumentWindowButton (int buttonType)
{
    Path shape;
    const float crossThickness = 0.25f;

    if (buttonType == DocumentWindow::closeButton)
    {
        shape.addLineSegment ({ 0.0f, 0.0f, 1.0f, 1.0f }, crossThickness * 1.4f);
        shape.addLineSegment ({ 1.0f, 0.0f, 0.0f, 1.0f }, crossThickness * 1.4f);
        return new DromelleLookAndFeel_V1_DocumentWindowButton ("close", colour0, Colour (0xffdd1100), shape, shape);
    }
    if (buttonType == DocumentWindow::minimiseButton)
    {
        shape.addLineSegment ({ 0.0f, 0.5f, 1.0f, 0.5f }, crossThickness);
        return new DromelleLookAndFeel_V1_DocumentWindowButton ("minimise", colour0, Colour (0xffaa8811), shape, shape);
    }
    if (buttonType == DocumentWindow::maximiseButton)
    {
        shape.addLineSegment ({ 0.5f, 0.0f, 0.5f, 1.0f }, crossThickness);
        shape.addLineSegment ({ 0.0f, 0.5f, 1.0f, 0.5f }, crossThickness);
        Path fullscreenShape;
        fullscreenShape.startNewSubPath (45.0f, 100.0f);
        fullscreenShape.lineTo (0.0f, 100.0f);
        fullscreenShape.lineTo (0.0f, 0.0f);
        fullscreenShape.lineTo (100.0f, 0.0f);
        fullscreenShape.lineTo (100.0f, 45.0f);
        fullscreenShape.addRectangle (45.0f, 45.0f, 100.0f, 100.0f);
        PathStrokeType (30.0f).createStrokedPath (fullscreenShape, fullscreenShape);
        return new DromelleLookAndFeel_V1_DocumentWindowButton ("maximise", colour0, Colour (0xff119911), shape, fullscreenShape);
    }
    return nullptr;
}
} // namespace velkaro
