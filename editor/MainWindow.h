// SPDX-License-Identifier: AGPL-3.0-or-later
// The whole panel, laid out once at 880 x 486 and scaled as a whole by its editor.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_audio_utils/juce_audio_utils.h>

#include "core/ParameterTable.h"
#include "editor/CustomMidiKeys.h"
#include "editor/DrawableBar.h"
#include "editor/DromelleLookAndFeel_V1.h"
#include "editor/GlobalSettings.h"
#include "editor/ImgToggleButton.h"
#include "editor/LookAndFeel_SimplyCenteredTextButtons.h"
#include "editor/LookAndFeel_sixX2Knob.h"
#include "editor/NameDisplay.h"
#include "editor/PanelTooltips.h"
#include "presets/PresetsToolbar.h"
#include "presets/UndoGestureTracker.h"

class KestruneAudioProcessor;

class MainWindow : public juce::Component, public juce::Timer, private juce::ComponentListener
{
public:
    explicit MainWindow (KestruneAudioProcessor&);
    ~MainWindow() override;

    void paint (juce::Graphics&) override;
    void resized() override;
    void parentSizeChanged() override;
    void parentHierarchyChanged() override;
    // Follows a new width and writes a tapped tempo; it stops once neither is pending.
    void timerCallback() override;

    // The compiler's date ("Mar  9 2025") as the brand bar shows it ("9 Mar 2025").
    static juce::String displayDate (const juce::String& compilerDate);

    juce::Slider* addParameterSlider (int index, juce::Point<int> position, juce::Point<int> size);
    void addParameterSwitch (int index, ImgToggleButton& button, juce::Point<int> position, juce::Point<int> size);
    void setAlphaUsingBypass (ImgToggleButton& button, int module);

    static constexpr int panelWidth = 880;
    static constexpr int panelHeight = 486;
    // The float nearest 486 / 880: height = trunc (width x aspect).
    static constexpr float aspect = 0.55227274f;

    KestruneAudioProcessor& processor;
    juce::AudioProcessorValueTreeState& parameters;

    // Look-and-feels first, so that they outlive every component that uses them.
    std::unique_ptr<velkaro::DromelleLookAndFeel_V1> defaultLookAndFeel;
    std::unique_ptr<velkaro::LookAndFeel_SimplyCenteredTextButtons> toolbarLookAndFeel;
    velkaro::LookAndFeel_sixX2Knob knobLookAndFeel;

    CustomMidiKeys keyboard;

    juce::Typeface::Ptr panelTypeface;
    std::vector<juce::Font> fonts;
    juce::Font controlFont { juce::FontOptions (20.0f) };

    std::array<std::unique_ptr<juce::Slider>, numParameters> sliders;
    std::array<std::unique_ptr<velkaro::NameDisplay>, numParameters> labels;

    const int bigKnobSize = 110, smallKnobSize = 56, mediumKnobSize = 82, rowKnobSize = 62, labelHeight = 24,
              barSliderWidth = 152, barSliderHeight = 38, switchSize = 20, switchTop = 32, bigKnobTop = 53, knobTop = 81,
              barSliderRow = 242, bottomRow = 332;

    const juce::Rectangle<int> toolbarArea { 52, 404, 776, 24 }, brandBarArea { 1, 428, 878, 24 },
        keyboardArea { 14, 454, 852, 32 }, pictureButtonArea { 846, 404, 32, 12 }, tooltipsButtonArea { 812, 404, 32, 12 };

    velkaro::NameDisplay amLabel { "AM" }, fmLabel { "FM" };
    ImgToggleButton octaverSwitch, octaveUpSwitch, reverseModuleSwitch, reverseSwitch, flangerModuleSwitch,
        flangerPreSwitch, tapButton;
    juce::TextButton syncButton { "T" }, wsButton { "WS" }, pictureButton { "picture" }, tooltipsButton { "tooltips" };

    // After the sliders and switches they hold: they go first and unregister from live controls.
    std::array<std::unique_ptr<juce::AudioProcessorValueTreeState::SliderAttachment>, numParameters> sliderAttachments;
    std::array<std::unique_ptr<juce::AudioProcessorValueTreeState::ButtonAttachment>, numParameters> buttonAttachments;

    velkaro::PresetsToolbar presetsToolbar;
    velkaro::UndoGestureTracker undoGestures; // one undo step per gesture on the panel
    DrawableBar brandBar;
    PanelTooltips tooltips { *this };

    juce::Image panelImage, backgroundImage, brandBarImage;
    juce::File resourcesFolder, savedBackgroundFile;
    GlobalSettings settings;
    int scaledWidth = 880;

private:
    // A slider makes its text box anew at every change of look; the new one gets the panel's font.
    void componentChildrenChanged (juce::Component& component) override;
    void applyControlFont (juce::Component& slider);
    void restorePicture();
    void pictureClicked();
    void syncClicked();
    void bindToggleButton (int index, juce::TextButton& button, juce::Rectangle<int> bounds);
    static juce::String buildVersionText (juce::AudioProcessor::WrapperType);
    bool widthToFollow() const;

    static constexpr int followMs = 20;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (MainWindow)
};
