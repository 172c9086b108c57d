// SPDX-License-Identifier: AGPL-3.0-or-later
// Draws the panel's bitmaps and vector shapes into resources/. Run by hand after changing the art;
// the results are committed, so a normal build never needs this program.
#include <juce_graphics/juce_graphics.h>

#include "tools/art/PanelArt.h"

int main (int argc, char** argv)
{
    if (argc < 3)
    {
        std::fprintf (stderr, "usage: ondrivel-art <resources folder> <font.ttf>\n");
        return 2;
    }
    const juce::File out (juce::File::getCurrentWorkingDirectory().getChildFile (argv[1]));
    const juce::File fontFile (juce::File::getCurrentWorkingDirectory().getChildFile (argv[2]));
    out.createDirectory();

    juce::MemoryBlock fontData;
    if (! fontFile.loadFileAsData (fontData))
    {
        std::fprintf (stderr, "cannot read %s\n", argv[2]);
        return 1;
    }
    PanelArt art (juce::Typeface::createSystemTypefaceFor (fontData.getData(), fontData.getSize()));
    return art.writeAll (out) ? 0 : 1;
}
