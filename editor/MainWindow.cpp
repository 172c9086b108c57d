// SPDX-License-Identifier: AGPL-3.0-or-later
// Every control is placed once, here, at scale 1; nothing is laid out on resize because the editor
// scales the whole panel with one transform.
#include "editor/MainWindow.h"

#include <algorithm>

#include "EditorData.h"
#include "core/KestruneAudioProcessor.h"
#include "core/XmlText.h"
#include "editor/ControlHelp.h"

namespace
{
// Decoded once per process; the cache hands every panel the same pixels.
juce::Image imageFromData (const char* data, int size)
{
    return juce::ImageCache::getFromMemory (data, size);
}

// The brand picture, softened and faded for the bar. Blurring the large picture is the slowest
// step of opening a panel, so the result is kept in the image cache while panels use it.
juce::Image blurredBrandPicture()
{
    constexpr juce::int64 cacheKey = 0x4f6e6472426c7572; // "OndrBlur"
    auto image = juce::ImageCache::getFromHashCode (cacheKey);
    if (image.isValid())
        return image;

    image = juce::ImageFileFormat::loadFrom (EditorData::brand_bar_png, (size_t) EditorData::brand_bar_pngSize);
    if (image.isValid())
    {
        juce::ImageConvolutionKernel blur (4);
        blur.createGaussianBlur (8.6f);
        blur.applyToImage (image, image, image.getBounds());
        image.multiplyAllAlphas (0.9f);
        juce::ImageCache::addImageToCache (image, cacheKey);
    }
    return image;
}

// Module members for dimming: sliders (with their labels) by table index.
constexpr int octaverSliders[] = { ParameterIndex::octave };
constexpr int reverseSliders[] = { ParameterIndex::time, ParameterIndex::fdbk, ParameterIndex::revmix,
                                   ParameterIndex::squeezeit, ParameterIndex::fmit };
constexpr int flangerSliders[] = { ParameterIndex::rate, ParameterIndex::flangerit };

constexpr int bottomRowIndices[] = { ParameterIndex::pitch,   ParameterIndex::timbre,  ParameterIndex::noise,
                                     ParameterIndex::envmod,  ParameterIndex::attack,  ParameterIndex::decay,
                                     ParameterIndex::sustain, ParameterIndex::release, ParameterIndex::vibrato,
                                     ParameterIndex::volume };

// The look-and-feels of the open panels, oldest first. The process default is one of them while any
// panel is open, and passes to another when its own panel closes.
std::vector<juce::LookAndFeel*>& openPanelLooks()
{
    static std::vector<juce::LookAndFeel*> looks;
    return looks;
}
} // namespace

MainWindow::MainWindow (KestruneAudioProcessor& p)
    : processor (p),
      parameters (p.parameters),
      toolbarLookAndFeel (std::make_unique<velkaro::LookAndFeel_SimplyCenteredTextButtons>()),
      keyboard (p.keyboardState, juce::MidiKeyboardComponent::horizontalKeyboard),
      octaverSwitch (imageFromData (EditorData::module_switch_png, EditorData::module_switch_pngSize), true),
      octaveUpSwitch (imageFromData (EditorData::octave_switch_png, EditorData::octave_switch_pngSize), true),
      reverseModuleSwitch (imageFromData (EditorData::module_switch_png, EditorData::module_switch_pngSize), true),
      reverseSwitch (imageFromData (EditorData::reverse_switch_png, EditorData::reverse_switch_pngSize), true),
      flangerModuleSwitch (imageFromData (EditorData::module_switch_png, EditorData::module_switch_pngSize), true),
      flangerPreSwitch (imageFromData (EditorData::pre_switch_png, EditorData::pre_switch_pngSize), true),
      tapButton (imageFromData (EditorData::tap_button_png, EditorData::tap_button_pngSize), false),
      presetsToolbar (p.presetManager, &p.undoManager),
      undoGestures (p.parameters, p.undoManager)
{
    panelTypeface = juce::Typeface::createSystemTypefaceFor (EditorData::PanelFont_ttf, (size_t) EditorData::PanelFont_ttfSize);
    for (const float height : { 24.0f, 20.0f, 18.0f, 16.0f, 14.0f })
    {
        auto options = juce::FontOptions (height);
        if (panelTypeface != nullptr)
            options = options.withTypeface (panelTypeface);
        fonts.emplace_back (options);
    }
    controlFont = fonts[1];

    panelImage = imageFromData (EditorData::panel_png, EditorData::panel_pngSize);

    backgroundImage = panelImage;
    pictureButton.setToggleState (true, juce::dontSendNotification);
    restorePicture();

    pictureButton.setBounds (pictureButtonArea);
    addAndMakeVisible (pictureButton);
    pictureButton.setAlpha (0.5f);
    pictureButton.setClickingTogglesState (true);
    pictureButton.setTooltip ("picture");
    pictureButton.onClick = [this] { pictureClicked(); };

    defaultLookAndFeel = std::make_unique<velkaro::DromelleLookAndFeel_V1>();
    defaultLookAndFeel->setDefaultSansSerifTypeface (panelTypeface);
    // Set on the panel and its tooltip window too, so that neither ever shows another panel's look or
    // the framework's own when the process default changes hands.
    setLookAndFeel (defaultLookAndFeel.get());
    tooltips.setLookAndFeel (defaultLookAndFeel.get());
    openPanelLooks().push_back (defaultLookAndFeel.get());
    juce::LookAndFeel::setDefaultLookAndFeel (defaultLookAndFeel.get());

    using namespace ParameterIndex;
    addParameterSlider (octave, { 32, knobTop }, { mediumKnobSize, mediumKnobSize });
    addParameterSwitch (bp1, octaverSwitch, { 12, switchTop }, { switchSize, switchSize });
    addParameterSwitch (up, octaveUpSwitch, { 134, 103 }, { 2 * switchSize, 2 * switchSize });
    addParameterSlider (fdbk, { 228, knobTop }, { mediumKnobSize, mediumKnobSize });
    addParameterSwitch (bp2, reverseModuleSwitch, { 208, switchTop }, { switchSize, switchSize });
    addParameterSlider (ParameterIndex::time, { 385, bigKnobTop }, { bigKnobSize, bigKnobSize + labelHeight });
    addParameterSwitch (rev, reverseSwitch, { 321, switchTop }, { 2 * switchSize, switchSize });
    addParameterSlider (rate, { 570, knobTop }, { mediumKnobSize, mediumKnobSize + labelHeight })->setTextValueSuffix (" hz");
    addParameterSwitch (bp3, flangerModuleSwitch, { 550, switchTop }, { switchSize, switchSize });
    addParameterSwitch (pre, flangerPreSwitch, { 594, switchTop }, { 30, switchSize });
    addParameterSlider (tilt, { 701, 103 }, { smallKnobSize, smallKnobSize });
    addParameterSlider (drywet, { 766, knobTop }, { mediumKnobSize, mediumKnobSize });

    // envms shares the place of fmit; it stays attached so that presets still restore it.
    addParameterSlider (envms, { 193, barSliderRow }, { barSliderWidth, barSliderHeight });
    sliders[envms]->setVisible (false);
    labels[envms]->setVisible (false);

    addParameterSlider (squeezeit, { 193, barSliderRow - barSliderHeight }, { barSliderWidth, barSliderHeight });
    addParameterSlider (fmit, { 193, barSliderRow }, { barSliderWidth, barSliderHeight });
    // No side border: the narrow labels need their whole 24 pixels for the two letters.
    amLabel.setBorderSize ({});
    fmLabel.setBorderSize ({});
    amLabel.setBounds (335, 204, 24, 38);
    fmLabel.setBounds (335, 242, 24, 38);
    addAndMakeVisible (amLabel);
    addAndMakeVisible (fmLabel);
    addParameterSlider (revmix, { 412, barSliderRow }, { smallKnobSize, smallKnobSize });
    addParameterSlider (flangerit, { 535, barSliderRow }, { barSliderWidth, barSliderHeight });

    labels[revmix]->setBounds (labels[revmix]->getBounds().expanded (10, 0));
    for (const int index : { fmit, squeezeit, flangerit })
        sliders[(size_t) index]->setPopupDisplayEnabled (true, true, this, 1400);

    bindToggleButton (ParameterIndex::sync, syncButton, { 428, 187, 24, 24 });
    syncButton.onClick = [this] { syncClicked(); };
    tapButton.setComponentID ("tap");
    tapButton.setTooltip (getHelpFor ("tap"));
    tapButton.showTapText = true;
    tapButton.onNewTapInterval = [this] { startTimer (followMs); };
    tapButton.setBounds (453, 185, 32, 28);
    addAndMakeVisible (tapButton);
    syncClicked();

    setAlphaUsingBypass (octaverSwitch, 0);
    setAlphaUsingBypass (reverseModuleSwitch, 1);
    setAlphaUsingBypass (flangerModuleSwitch, 2);

    // Ten knobs spread evenly: the gap is a float, the step its truncated sum with the knob.
    const float gap = (float) (panelWidth - 10 * rowKnobSize - 48) / 9.0f;
    const int step = (int) (gap + (float) rowKnobSize);
    for (int k = 0; k < 10; ++k)
    {
        auto* knob = addParameterSlider (bottomRowIndices[k], { 24 + k * step, bottomRow }, { rowKnobSize, rowKnobSize });
        knob->setPopupDisplayEnabled (true, true, this, 1400);
    }
    sliders[pitch]->setLookAndFeel (&knobLookAndFeel);

    addParameterSlider (reverb, { panelWidth - rowKnobSize - 28, barSliderRow }, { smallKnobSize, smallKnobSize })
        ->setColour (juce::Slider::thumbColourId, juce::Colour (0xff555555));

    const int wsSide = juce::jmax ((int) (gap - 0.5f) - 4, 0);
    bindToggleButton (ws, wsButton, { sliders[timbre]->getRight() + 2, bottomRow - 23 + rowKnobSize + 2, wsSide, wsSide });

    keyboard.setBounds (keyboardArea);
    keyboard.setScrollButtonsVisible (false);
    keyboard.setMouseClickGrabsKeyboardFocus (true);
    keyboard.setKeyPressBaseOctave (5);
    keyboard.setAvailableRange (24, 110);
    keyboard.setKeyWidth (16.68f);
    keyboard.setColour (juce::MidiKeyboardComponent::keyDownOverlayColourId, juce::Colour (0x551111ff));
    keyboard.setColour (juce::MidiKeyboardComponent::mouseOverKeyOverlayColourId, juce::Colour (0xaa1155ff));
    addAndMakeVisible (keyboard);

    brandBarImage = blurredBrandPicture();

    brandBar.productName = "Ondrivel";
    brandBar.font = fonts[4];
    brandBar.brandImage = &brandBarImage;
    brandBar.link = juce::URL ("https://ondrivel.example.org");
    brandBar.versionText = buildVersionText (processor.wrapperType);
    brandBar.setBounds (brandBarArea);
    addAndMakeVisible (brandBar);

    presetsToolbar.setLookAndFeel (toolbarLookAndFeel.get());
    presetsToolbar.setBounds (toolbarArea);
    addAndMakeVisible (presetsToolbar);

    startTimer (followMs);
    settings.dataFolder = processor.dataFolder;
    settings.read();
    scaledWidth = settings.windowWidth;

    tooltipsButton.setBounds (tooltipsButtonArea);
    addAndMakeVisible (tooltipsButton);
    tooltipsButton.setClickingTogglesState (true);
    tooltipsButton.setTooltip ("tooltips");
    tooltipsButton.onClick = [this]
    {
        tooltips.setEnabled (tooltipsButton.getToggleState());
        settings.showTooltips = tooltipsButton.getToggleState() ? 1 : 0;
    };
    tooltipsButton.setToggleState (settings.showTooltips > 0, juce::dontSendNotification);
    tooltips.setEnabled (tooltipsButton.getToggleState());

    undoGestures.watchKeysOf (*this);
}

MainWindow::~MainWindow()
{
    settings.windowWidth = scaledWidth;
    if (settings.dataFolder.isNotEmpty() && ! settings.write())
        juce::AlertWindow::showMessageBoxAsync (juce::MessageBoxIconType::WarningIcon, "Saving Settings", "Failed!", "OK");
    stopTimer();

    for (auto& slider : sliders)
        if (slider != nullptr)
            slider->removeComponentListener (this);
    if (sliders[ParameterIndex::pitch] != nullptr)
        sliders[ParameterIndex::pitch]->setLookAndFeel (nullptr);
    tooltips.setLookAndFeel (nullptr);
    setLookAndFeel (nullptr);

    // The process-wide default must not point at a look-and-feel that is about to go: it passes to the
    // panel opened last of those still open.
    auto& looks = openPanelLooks();
    looks.erase (std::remove (looks.begin(), looks.end(), defaultLookAndFeel.get()), looks.end());
    if (&juce::LookAndFeel::getDefaultLookAndFeel() == defaultLookAndFeel.get())
        juce::LookAndFeel::setDefaultLookAndFeel (looks.empty() ? nullptr : looks.back());
}

//==============================================================================
juce::Slider* MainWindow::addParameterSlider (int index, juce::Point<int> position, juce::Point<int> size)
{
    const auto& row = parameterTable[index];
    const int x = position.x, y = position.y, w = size.x, h = size.y;

    auto label = std::make_unique<velkaro::NameDisplay> (row.name);
    label->setFont (controlFont);
    label->setMinimumHorizontalScale (0.5f);
    label->setText (row.name, juce::dontSendNotification);
    label->setBounds (x, y - labelHeight, w, labelHeight);
    label->setJustificationType (juce::Justification::centred);
    if (index != ParameterIndex::fmit)
        addAndMakeVisible (*label);
    labels[(size_t) index] = std::move (label);

    auto slider = std::make_unique<juce::Slider>();
    if (row.kind == 0)
        slider->setSliderStyle (juce::Slider::RotaryHorizontalVerticalDrag);
    else if (row.kind == 1)
        slider->setSliderStyle (juce::Slider::LinearHorizontal);

    const bool hasTextBox = index == ParameterIndex::time || index == ParameterIndex::envms || index == ParameterIndex::rate;
    const int height = (hasTextBox || row.kind == 1) ? h : w;
    slider->setBounds (x, y, w, height);
    slider->setComponentID (row.id);
    slider->setDoubleClickReturnValue (true, row.defaultValue);
    slider->setColour (juce::Slider::textBoxOutlineColourId, juce::Colour (0x00ffffff));
    slider->setTooltip (getHelpFor (row.id));
    slider->setTextBoxStyle (hasTextBox ? juce::Slider::TextBoxBelow : juce::Slider::NoTextBox,
                             index != ParameterIndex::time, w, labelHeight);
    addAndMakeVisible (*slider);
    slider->addComponentListener (this);
    sliderAttachments[(size_t) index] = std::make_unique<juce::AudioProcessorValueTreeState::SliderAttachment> (parameters, row.id, *slider);

    sliders[(size_t) index] = std::move (slider);
    return sliders[(size_t) index].get();
}

void MainWindow::addParameterSwitch (int index, ImgToggleButton& button, juce::Point<int> position, juce::Point<int> size)
{
    const auto& row = parameterTable[index];
    button.setBounds (position.x, position.y, size.x, size.y);
    button.setComponentID (row.id);
    addAndMakeVisible (button);
    button.setTooltip (getHelpFor (row.id));
    buttonAttachments[(size_t) index] = std::make_unique<juce::AudioProcessorValueTreeState::ButtonAttachment> (parameters, row.id, button);
}

void MainWindow::bindToggleButton (int index, juce::TextButton& button, juce::Rectangle<int> bounds)
{
    const auto& row = parameterTable[index];
    button.setComponentID (row.id);
    button.setClickingTogglesState (true);
    button.setTooltip (getHelpFor (row.id));
    buttonAttachments[(size_t) index] = std::make_unique<juce::AudioProcessorValueTreeState::ButtonAttachment> (parameters, row.id, button);
    button.setBounds (bounds);
    addAndMakeVisible (button);
}

void MainWindow::setAlphaUsingBypass (ImgToggleButton& button, int module)
{
    if (! button.onClick)
        button.onClick = [this, &button, module] { setAlphaUsingBypass (button, module); };

    const float alpha = button.getToggleState() ? 1.0f : 0.4f;
    const auto dimSliders = [this, alpha] (const auto& indices)
    {
        for (const int index : indices)
        {
            if (sliders[(size_t) index] != nullptr)
                sliders[(size_t) index]->setAlpha (alpha);
            if (labels[(size_t) index] != nullptr)
                labels[(size_t) index]->setAlpha (alpha);
        }
    };

    switch (module)
    {
        case 0:
            dimSliders (octaverSliders);
            octaveUpSwitch.setAlpha (alpha);
            break;
        case 1:
            dimSliders (reverseSliders);
            reverseSwitch.setAlpha (alpha);
            syncButton.setAlpha (alpha);
            tapButton.setAlpha (alpha);
            break;
        case 2:
            dimSliders (flangerSliders);
            flangerPreSwitch.setAlpha (alpha);
            break;
        default:
            break;
    }
}

void MainWindow::syncClicked()
{
    const bool synced = syncButton.getToggleState();
    if (auto* timeKnob = sliders[ParameterIndex::time].get())
    {
        timeKnob->setTextBoxIsEditable (! synced);
        timeKnob->updateText();
        timeKnob->repaint();
        // A change from the host reaches this switch before the value that the text reads has
        // moved, so the text is refreshed once more when the message loop comes round.
        juce::MessageManager::callAsync ([knob = juce::Component::SafePointer<juce::Slider> (timeKnob)]
        {
            if (knob != nullptr)
                knob->updateText();
        });
    }
    tapButton.setVisible (! synced);
}

//==============================================================================
void MainWindow::restorePicture()
{
    backgroundImage = panelImage;
    pictureButton.setToggleState (true, juce::dontSendNotification);

    resourcesFolder = bundleResourcesFolder();
    savedBackgroundFile = ::savedBackgroundFile();
    if (! savedBackgroundFile.exists())
        savedBackgroundFile.create();

    const auto name = velkaro::XmlText::readFile (savedBackgroundFile);

    if (name.isNotEmpty())
    {
        backgroundImage = juce::ImageFileFormat::loadFrom (resourcesFolder.getChildFile (name));
        pictureButton.setToggleState (name == "picture_key.png", juce::dontSendNotification);
    }
}

void MainWindow::pictureClicked()
{
    const juce::String name = pictureButton.getToggleState() ? "picture_key.png" : "plain_key.png";
    backgroundImage = juce::ImageFileFormat::loadFrom (resourcesFolder.getChildFile (name));
    if (savedBackgroundFile.existsAsFile())
        savedBackgroundFile.replaceWithText (name, false, false, nullptr);
    if (! backgroundImage.isValid())
        backgroundImage = panelImage;
    repaint();
}

//==============================================================================
void MainWindow::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colour (0xff111144));
    if (backgroundImage.isValid())
        g.drawImage (backgroundImage, getLocalBounds().toFloat(), juce::RectanglePlacement::stretchToFit);
}

void MainWindow::resized()
{
    for (auto& slider : sliders)
        if (slider != nullptr)
            applyControlFont (*slider);
}

void MainWindow::applyControlFont (juce::Component& slider)
{
    for (auto* child : slider.getChildren())
        if (auto* label = dynamic_cast<juce::Label*> (child))
            if (label->getFont() != controlFont)
                label->setFont (controlFont);
}

void MainWindow::componentChildrenChanged (juce::Component& component)
{
    applyControlFont (component);
}

void MainWindow::parentSizeChanged()
{
    startTimer (followMs);
}

void MainWindow::parentHierarchyChanged()
{
    startTimer (followMs);
}

bool MainWindow::widthToFollow() const
{
    const auto* parent = getParentComponent();
    return parent != nullptr && parent->getWidth() != scaledWidth;
}

void MainWindow::timerCallback()
{
    auto* parent = getParentComponent();
    if (widthToFollow())
    {
        // While the corner resizer is dragged the editor leads; the panel follows once it is let go.
        bool pointerBusy = false;
        for (const auto& source : juce::Desktop::getInstance().getMouseSources())
        {
            auto* under = source.getComponentUnderMouse();
            const bool overParent = under != nullptr && (under == parent || parent->isParentOf (under));
            if ((overParent && source.isDragging()) || ! source.isMouse())
                pointerBusy = true;
        }
        if (! pointerBusy && isVisible())
        {
            setTransform (juce::AffineTransform::scale ((float) scaledWidth / (float) panelWidth));
            parent->setBounds (parent->getX(), parent->getY(), scaledWidth, (int) ((float) scaledWidth * aspect));
        }
    }

    if (tapButton.hasNewTapInterval())
    {
        // Four beats of the tapped tempo, through the parameter's own skew (a linear position would
        // land far from the time tapped), as one gesture: one undo step, one automation touch.
        const auto barMs = (float) (4.0 * tapButton.getTapMeanMs());
        auto* timeParameter = parameters.getParameter (parameterTable[ParameterIndex::time].id);
        if (timeParameter != nullptr && barMs > 0.0f)
        {
            timeParameter->beginChangeGesture();
            timeParameter->setValueNotifyingHost (timeParameter->convertTo0to1 (barMs));
            timeParameter->endChangeGesture();
        }
        tapButton.clearNewTapInterval();
    }

    // Nothing to follow: no wake-ups while the panel is left alone; a resize or a tap starts it again.
    if (! widthToFollow())
        stopTimer();
}

//==============================================================================
juce::String MainWindow::displayDate (const juce::String& compilerDate)
{
    // __DATE__ reads "Mar  9 2025", with a second blank before a one-digit day; the bar shows "9 Mar 2025".
    auto parts = juce::StringArray::fromTokens (compilerDate, " ", "");
    parts.removeEmptyStrings();
    if (parts.size() != 3)
        return compilerDate;
    return juce::String (parts[1].getIntValue()) + " " + parts[0] + " " + parts[2];
}

juce::String MainWindow::buildVersionText (juce::AudioProcessor::WrapperType wrapper)
{
    const auto date = displayDate (__DATE__);

   #if defined(__aarch64__) || defined(_M_ARM64)
    const juce::String tag ("ARM");
   #else
    const juce::String tag ("x64");
   #endif
    const juce::String format = wrapper == juce::AudioProcessor::wrapperType_VST3 ? "VST3" : "";
    return "v" + juce::String ("0.9.1") + " [" + date + "] " + tag + " " + format + "  ";
}
