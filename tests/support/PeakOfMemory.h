#pragma once

#include <sys/resource.h>

/// The most memory that this process has held so far, in KiB.
inline long peakOfMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
