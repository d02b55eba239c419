#pragma once

#include <functional>

namespace bench {

/// Calls a function in a child process and returns its result. It finds memory as at the start of a
/// program, and changes nothing in this process. The caller must not have started threads. Ends
/// this program with status 1 when the child fails.
double inChild(const std::function<double()>& function);

/// Clocks, in seconds.
double wallClock();
double threadClock();  ///< CPU time of the calling thread
double processClock(); ///< CPU time of all threads

/// The largest resident size that this process has had, in bytes.
double peakMemory();

} // namespace bench
