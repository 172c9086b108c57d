// SPDX-License-Identifier: AGPL-3.0-or-later
// ondrivel-render: renders the VST3 plug-in offline into a WAV file, as a DAW's export would.
#include <iostream>

#include "OfflineRender.h"
#include "RenderOptions.h"

namespace
{
constexpr int badInput = 2;

int fail (const juce::String& message)
{
    std::cerr << "ondrivel-render: " << message.replaceCharacters ("\r\n", "  ") << std::endl;
    return badInput;
}
} // namespace

int main (int argc, char* argv[])
{
    juce::StringArray args;
    for (int i = 1; i < argc; ++i)
        args.add (juce::String::fromUTF8 (argv[i]));

    RenderOptions options;
    juce::String error;
    if (! RenderOptions::parse (args, juce::File::getCurrentWorkingDirectory(), options, error))
        return fail (error);
    if (options.helpRequested)
    {
        std::cout << RenderOptions::usage();
        return 0;
    }

    OfflineRender render (options);
    juce::String summary;
    if (! render.run (summary, error))
        return fail (error);

    std::cout << summary << std::flush;
    return 0;
}
