// SPDX-License-Identifier: AGPL-3.0-or-later
// Stand-in for libFuzzer's main where clang is not used: runs every corpus file, then a fixed number
// of seeded mutations of them, so the same command line gives the same inputs on every machine.
// Understands -runs=N, -seed=N, -max_len=N and -artifact_prefix=P (a failing input is written to
// P + "crash-input"); other flags are ignored, other arguments are corpus folders or files.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <juce_core/juce_core.h>

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

namespace
{
using Bytes = std::vector<std::uint8_t>;

// The input under test, written out by the abort handler as libFuzzer writes its crash file.
const Bytes* currentInput = nullptr;
std::string crashPath = "crash-input";

extern "C" void writeCrashInput (int)
{
    if (currentInput != nullptr)
    {
        const int fd = open (crashPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd >= 0)
        {
            [[maybe_unused]] auto written = write (fd, currentInput->data(), currentInput->size());
            close (fd);
        }
        static const char note[] = "fuzz driver: failing input written\n";
        [[maybe_unused]] auto noted = write (2, note, sizeof (note) - 1);
    }
    std::signal (SIGABRT, SIG_DFL);
    std::abort();
}

void run (const Bytes& input)
{
    currentInput = &input;
    LLVMFuzzerTestOneInput (input.data(), input.size());
    currentInput = nullptr;
}

// Fragments that damaged state and preset files are likely to hold.
const char* const dictionary[] = { "nan", "-nan", "inf", "-inf", "1e39", "-1e39", "1e-45", "0x", "\"", "'",
                                   "<", ">", "/>", "</PARAM>", "<PARAM id=\"volume\" value=\"", "id=\"",
                                   "value=\"", "&amp;", "&#0;", "&#x10FFFF;", "<![CDATA[", "<!--", "<?xml",
                                   "VC2!", "\xff\xfe", "\xc3\x28", "PROGRAM", "NOTES", "ondrivel" };

void mutate (Bytes& input, const std::vector<Bytes>& corpus, std::mt19937& random, std::size_t maxLength)
{
    auto pick = [&random] (std::size_t n) { return n == 0 ? std::size_t (0) : (std::size_t) (random() % n); };
    auto at = [&input] (std::size_t i) { return input.begin() + (std::ptrdiff_t) i; };
    for (int s = 1 + (int) pick (4); s > 0; --s)
    {
        const auto where = pick (input.size() + 1);
        switch (pick (7))
        {
            case 0: if (! input.empty()) input[pick (input.size())] ^= (std::uint8_t) (1u << pick (8)); break;
            case 1: if (! input.empty()) input[pick (input.size())] = (std::uint8_t) random(); break;
            case 2: input.insert (at (where), (std::uint8_t) random()); break;
            case 3: // erase up to 64 bytes
                if (where < input.size())
                    input.erase (at (where), at (where + 1 + pick (std::min<std::size_t> (64, input.size() - where))));
                break;
            case 4:
            {
                const char* word = dictionary[pick (std::size (dictionary))];
                input.insert (at (where), word, word + std::strlen (word));
                break;
            }
            case 5: // a piece of another input
            {
                const auto& other = corpus[pick (corpus.size())];
                const auto start = pick (other.size());
                if (! other.empty())
                    input.insert (at (where), other.begin() + (std::ptrdiff_t) start, other.begin() + (std::ptrdiff_t) (start + 1 + pick (other.size() - start)));
                break;
            }
            default: input.resize (pick (input.size() + 1)); break;
        }
    }
    if (input.size() > maxLength)
        input.resize (maxLength);
}
} // namespace

int main (int argc, char** argv)
{
    long runs = 1000;
    unsigned seed = 1;
    std::size_t maxLength = 8192;
    std::vector<Bytes> corpus;
    for (int i = 1; i < argc; ++i)
    {
        const std::string arg = argv[i];
        const auto value = [&arg] (const char* flag) { return arg.rfind (flag, 0) == 0 ? arg.substr (std::strlen (flag)) : std::string(); };
        if (! value ("-runs=").empty())
            runs = std::stol (value ("-runs="));
        else if (! value ("-seed=").empty())
            seed = (unsigned) std::stoul (value ("-seed="));
        else if (! value ("-max_len=").empty())
            maxLength = (std::size_t) std::stoul (value ("-max_len="));
        else if (! value ("-artifact_prefix=").empty())
            crashPath = value ("-artifact_prefix=") + "crash-input";
        else if (arg.rfind ("-", 0) != 0)
        {
            const auto location = juce::File::getCurrentWorkingDirectory().getChildFile (juce::String (arg));
            auto files = location.isDirectory() ? location.findChildFiles (juce::File::findFiles, true) : juce::Array<juce::File> { location };
            files.sort();
            for (const auto& file : files)
            {
                juce::MemoryBlock block;
                if (file.loadFileAsData (block))
                    corpus.emplace_back (static_cast<const std::uint8_t*> (block.getData()), static_cast<const std::uint8_t*> (block.getData()) + block.getSize());
            }
        }
    }
    if (corpus.empty())
        corpus.emplace_back();

    std::signal (SIGABRT, writeCrashInput);
    for (const auto& input : corpus)
        run (input);
    std::mt19937 random (seed);
    for (long r = 0; r < runs; ++r)
    {
        auto input = corpus[(std::size_t) (random() % corpus.size())];
        mutate (input, corpus, random, maxLength);
        run (input);
    }
    std::printf ("fuzz driver: %zu corpus inputs and %ld mutations, no failure\n", corpus.size(), runs);
    return 0;
}
