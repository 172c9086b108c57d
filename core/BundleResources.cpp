// SPDX-License-Identifier: AGPL-3.0-or-later
// On Linux the framework reports the plug-in's .so as the application file, so the bundle is found
// from the .so's own path, looked up through a symbol of ours.
#include "core/BundleResources.h"

#if JUCE_LINUX || JUCE_BSD
 #include <dlfcn.h>
#endif

namespace
{
void symbolInThisModule() {}
} // namespace

juce::File BundleResources::getModuleFile()
{
   #if JUCE_LINUX || JUCE_BSD
    Dl_info info {};
    if (dladdr (reinterpret_cast<void*> (&symbolInThisModule), &info) != 0 && info.dli_fname != nullptr)
    {
        // A library loaded by a host has an absolute path; the working directory may have moved since,
        // so a relative name (an executable started by a relative path) is taken from the process instead.
        const juce::String path (juce::CharPointer_UTF8 (info.dli_fname));
        if (juce::File::isAbsolutePath (path))
        {
            const juce::File module (path);
            return module.isSymbolicLink() ? module.getLinkedTarget() : module;
        }
        return juce::File::getSpecialLocation (juce::File::hostApplicationPath);
    }
   #endif
    return juce::File::getSpecialLocation (juce::File::currentApplicationFile);
}

juce::File BundleResources::resourcesFolderFor (const juce::File& moduleFile)
{
    if (moduleFile.isDirectory())
        return moduleFile.getChildFile ("Contents").getChildFile ("Resources");

    const auto folder = moduleFile.getParentDirectory();
    const auto contents = folder.getParentDirectory();
    if (contents.getFileName() == "Contents")
        return contents.getChildFile ("Resources");

    // An installed program (<prefix>/bin/name) keeps its files in <prefix>/share/name.
    if (folder.getFileName() == "bin")
        return contents.getChildFile ("share").getChildFile (moduleFile.getFileNameWithoutExtension());

    // An LV2 bundle holds its library at the top, and a program in the build tree stands alone:
    // both keep a "Resources" folder beside the binary.
    return folder.getChildFile ("Resources");
}
