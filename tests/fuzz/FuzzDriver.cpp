// SPDX-License-Identifier: AGPL-3.0-or-later
// Stand-in for libFuzzer's main where clang is not used: replays every file of the corpus folders
// and files named on the command line, naming each before it runs, so that a crash or a hang points
// at its input. Flags (-runs=, -seed= and the like) are left to libFuzzer, which explores in the
// sanitized build.
#include <cstdint>
#include <cstdio>

#include <juce_core/juce_core.h>

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

int main (int argc, char** argv)
{
    int inputs = 0;
    for (int i = 1; i < argc; ++i)
    {
        // Flags name no file or folder, so they load nothing.
        const auto location = juce::File::getCurrentWorkingDirectory().getChildFile (argv[i]);
        auto files = location.isDirectory() ? location.findChildFiles (juce::File::findFiles, true) : juce::Array<juce::File> { location };
        files.sort();
        for (const auto& file : files)
        {
            juce::MemoryBlock block;
            if (! file.loadFileAsData (block))
                continue;
            std::printf ("fuzz driver: %s\n", file.getFullPathName().toRawUTF8());
            std::fflush (stdout);
            LLVMFuzzerTestOneInput (static_cast<const std::uint8_t*> (block.getData()), block.getSize());
            ++inputs;
        }
    }
    std::printf ("fuzz driver: %d inputs, no failure\n", inputs);
    return inputs > 0 ? 0 : 1;
}
