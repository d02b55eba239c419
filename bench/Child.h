#pragma once

#include <functional>

namespace bench {

/// Runs something in a process of its own and returns what it returns there: with fresh memory, as
/// after the start of a program, and without traces here. The caller must not have started threads.
/// Ends this program with status 1 when the child fails.
double inChild(const std::function<double()>& function);

/// Clocks, in seconds.
double wallClock();
double threadClock();  ///< CPU time of the calling thread
double processClock(); ///< CPU time of all threads

/// The largest resident size that this process has had, in bytes.
double peakMemory();

} // namespace bench
