// SPDX-License-Identifier: AGPL-3.0-or-later
// Whatever size the host or the corner resizer asks for, the height follows the width.
#include "editor/PelvaneAudioProcessorEditor.h"

#include "core/KestruneAudioProcessor.h"
#include "editor/MainWindow.h"

PelvaneAudioProcessorEditor::PelvaneAudioProcessorEditor (KestruneAudioProcessor& p)
    : juce::AudioProcessorEditor (p), processor (p)
{
    setSize (MainWindow::panelWidth, MainWindow::panelHeight);
    setResizable (true, true);
    setResizeLimits (440, 243, 3520, 1944);

    settings.dataFolder = processor.dataFolder;
    settings.read();
    // A stored width is taken as it is; only one that leaves no panel at all (0 or less, as a
    // broken file gives) would make an editor nobody can see or grab, so that one opens at 880.
    const int width = settings.windowWidth > 0 ? settings.windowWidth : MainWindow::panelWidth;
    setSize (width, (int) ((float) width * MainWindow::aspect));

    mainWindow = std::make_unique<MainWindow> (processor);
    // The corner resizer is drawn in the panel's look whatever the process default is.
    setLookAndFeel (mainWindow->defaultLookAndFeel.get());
    addAndMakeVisible (*mainWindow);
    mainWindow->setBounds (0, 0, MainWindow::panelWidth, MainWindow::panelHeight);
    mainWindow->scaledWidth = getWidth();
    if (mainWindow->isVisible())
        applyScale();

    // The library may have changed on disk while no editor was open; the loaded preset stays loaded.
    processor.presetManager.reload();
}

PelvaneAudioProcessorEditor::~PelvaneAudioProcessorEditor()
{
    setLookAndFeel (nullptr);
    mainWindow.reset();
}

void PelvaneAudioProcessorEditor::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colour (0xff0000ff));
}

void PelvaneAudioProcessorEditor::resized()
{
    if (mainWindow == nullptr)
        return;
    mainWindow->setBounds (0, 0, MainWindow::panelWidth, MainWindow::panelHeight);
    mainWindow->scaledWidth = getWidth();
    if (mainWindow->isVisible())
        applyScale();
}

void PelvaneAudioProcessorEditor::applyScale()
{
    const int width = getWidth();
    if (width <= 0)
        return; // a zero scale has no inverse, and the panel could not map the mouse
    mainWindow->setTransform (juce::AffineTransform::scale ((float) width / (float) MainWindow::panelWidth));
    setBounds (getX(), getY(), width, (int) ((float) width * MainWindow::aspect));
}
