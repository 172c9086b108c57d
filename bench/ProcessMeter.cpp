// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ProcessMeter.h"

#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace
{
double secondsOf (clockid_t clock)
{
    timespec t {};
    clock_gettime (clock, &t);
    return (double) t.tv_sec + (double) t.tv_nsec * 1.0e-9;
}
} // namespace

double ProcessMeter::threadCpuSeconds() { return secondsOf (CLOCK_THREAD_CPUTIME_ID); }

double ProcessMeter::processCpuSeconds() { return secondsOf (CLOCK_PROCESS_CPUTIME_ID); }

double ProcessMeter::wallSeconds() { return secondsOf (CLOCK_MONOTONIC); }

std::int64_t ProcessMeter::residentBytes()
{
    // statm counts pages: total size first, then resident.
    long long size = 0, resident = 0;
    if (auto* file = std::fopen ("/proc/self/statm", "r"))
    {
        if (std::fscanf (file, "%lld %lld", &size, &resident) != 2)
            resident = 0;
        std::fclose (file);
    }
    return (std::int64_t) resident * (std::int64_t) sysconf (_SC_PAGESIZE);
}
