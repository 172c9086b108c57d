// SPDX-License-Identifier: AGPL-3.0-or-later
// ondrivel-bench: measures a VST3 bundle the way a host runs it. bench/bench.sh runs it on this
// tree's bundle and on a baseline's and prints the comparison; each mode prints plain "key value"
// lines for that script.
//
//   ondrivel-bench render --plugin B --patch full|default|note|idle [--instances N] [--seconds S]
//   ondrivel-bench memory --plugin B [--rate HZ]
//   ondrivel-bench panel  --plugin B --width PX|0 [--left PX] [--frame-only] [--windows K] [--seconds S]
//   ondrivel-bench soak   [--plugin B] [--seconds S]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION
#define CALLGRIND_STOP_INSTRUMENTATION
#endif

#include "BenchJob.h"
#include "HostEnvironment.h"
#include "PanelCost.h"
#include "ProcessMeter.h"
#include "SoakRun.h"

namespace
{
constexpr double warmUpSeconds = 1.0;

juce::String option (const juce::StringArray& args, const char* name, const juce::String& fallback)
{
    const int i = args.indexOf (name);
    return i >= 0 && i + 1 < args.size() ? args[i + 1] : fallback;
}

int fail (const juce::String& message)
{
    std::cerr << "ondrivel-bench: " << message << std::endl;
    return 2;
}

int blocksFor (double seconds, double sampleRate)
{
    return std::max (1, (int) std::ceil (seconds * sampleRate / BenchJob::blockSize));
}

// The only code callgrind counts (bench.sh passes --toggle-collect for it), so that the plug-in's
// loading, the warm-up and other threads stay out of the instruction count.
__attribute__ ((noinline)) double renderMeasured (BenchJob& job, int blocks)
{
    return job.render (blocks);
}

int renderMode (const juce::File& bundle, const juce::StringArray& args)
{
    juce::String error;
    const auto rate = 48000.0;
    auto job = BenchJob::load (bundle, option (args, "--patch", "full"), option (args, "--instances", "1").getIntValue(),
                               rate, error);
    if (job == nullptr)
        return fail (error);

    job->render (blocksFor (warmUpSeconds, rate));
    const int blocks = blocksFor (option (args, "--seconds", "2").getDoubleValue(), rate);
    CALLGRIND_START_INSTRUMENTATION;
    const double cpu = ProcessMeter::threadCpuSeconds();
    const double audioSeconds = renderMeasured (*job, blocks);
    const double spent = ProcessMeter::threadCpuSeconds() - cpu;
    CALLGRIND_STOP_INSTRUMENTATION;
    std::printf ("audio_seconds %.6f\ncpu_per_audio_second %.9f\n", audioSeconds, spent / audioSeconds);
    return 0;
}

int memoryMode (const juce::File& bundle, const juce::StringArray& args)
{
    const double rate = option (args, "--rate", "48000").getDoubleValue();
    const auto before = ProcessMeter::residentBytes();
    juce::String error;
    auto job = BenchJob::load (bundle, "full", 1, rate, error);
    if (job == nullptr)
        return fail (error);
    const auto loaded = ProcessMeter::residentBytes();
    job->render (blocksFor (1.0, rate));
    const auto playing = ProcessMeter::residentBytes();
    std::printf ("loaded_mb %.2f\nplaying_mb %.2f\n", (double) (loaded - before) * 1.0e-6, (double) (playing - before) * 1.0e-6);
    return 0;
}

int panelMode (const juce::File& bundle, const juce::StringArray& args)
{
    PanelCost::Request request;
    request.width = option (args, "--width", "880").getIntValue();
    request.left = option (args, "--left", "0").getIntValue();
    request.frameOnly = args.contains ("--frame-only");
    request.windows = option (args, "--windows", "4").getIntValue();
    request.windowSeconds = option (args, "--seconds", "2").getDoubleValue();
    PanelCost::Result result;
    juce::String error;
    if (! PanelCost::measure (bundle, request, result, error))
        return fail (error);
    std::printf ("shown_width %d\npanel_percent", result.shownWidth);
    for (double percent : result.percentOfCore)
        std::printf (" %.4f", percent);
    std::printf ("\n");
    return 0;
}

int soakMode (const juce::File& bundle, const juce::StringArray& args)
{
    const auto* fromEnvironment = std::getenv ("ONDRIVEL_SOAK_SECONDS");
    const double seconds = option (args, "--seconds", fromEnvironment != nullptr ? fromEnvironment : "600").getDoubleValue();
    juce::String error;
    return SoakRun::run (bundle, std::max (1.0, seconds), error) ? 0 : fail (error);
}

// The plug-in keeps presets and settings under HOME, and the panel measurement writes its width
// there: the benchmarks use a home of their own, beside the program.
void useOwnHome()
{
    const auto home = juce::File::getSpecialLocation (juce::File::currentExecutableFile).getSiblingFile ("bench-home");
    home.createDirectory();
    setenv ("HOME", home.getFullPathName().toRawUTF8(), 1);
}
} // namespace

int main (int argc, char* argv[])
{
    juce::StringArray args;
    for (int i = 1; i < argc; ++i)
        args.add (juce::String::fromUTF8 (argv[i]));
    const auto mode = args[0];
    const juce::File bundle (juce::File::getCurrentWorkingDirectory().getChildFile (option (args, "--plugin", ONDRIVEL_DEFAULT_BUNDLE)));

    useOwnHome();
    HostEnvironment environment;
    if (mode == "render")
        return renderMode (bundle, args);
    if (mode == "memory")
        return memoryMode (bundle, args);
    if (mode == "panel")
        return panelMode (bundle, args);
    if (mode == "soak")
        return soakMode (bundle, args);
    return fail ("usage: ondrivel-bench render|memory|panel|soak --plugin BUNDLE.vst3 [options]");
}
