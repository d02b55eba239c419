#pragma once

namespace record {

/// A signal that asks the program to end before its work is done: Ctrl-C, a closed terminal, kill;
/// or SIGPIPE, when nobody reads a stream any more.
struct Interruption {
    int signal;

    /// From here on those signals are noted instead of ending the process.
    static void watch();

    /// Throws an Interruption when there was such a signal.
    static void check();
};

} // namespace record
