#pragma once

namespace bench {

/// A second process that reads and writes memory, far more than any cache holds, as fast as it can:
/// the caches and the memory's bandwidth are shared with it while an object of this class lives.
class MemoryStream {
public:
    /// Starts the process, and returns when it is busy. The caller must not have started threads.
    MemoryStream();
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;

    /// Ends the process.
    ~MemoryStream();

private:
    int process = -1;
};

} // namespace bench
