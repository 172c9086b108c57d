// SPDX-License-Identifier: AGPL-3.0-or-later
// What the benchmarks read from the operating system: CPU time of the calling thread and of the
// whole process, wall-clock time, and the process's resident memory.
#pragma once

#include <cstdint>

class ProcessMeter
{
public:
    static double threadCpuSeconds();
    static double processCpuSeconds();
    static double wallSeconds();
    static std::int64_t residentBytes();
};
