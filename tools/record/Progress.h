#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace record {

/// Prints how much of the work is done: on a terminal a bar that grows in place, elsewhere a line
/// at every tenth.
class Progress {
public:
    using Duration = std::chrono::duration<double>;

    /// \param out       borrows
    /// \param terminal  whether out is one
    /// \param total     pieces of work, at least 1
    Progress(std::FILE* out, bool terminal, std::int64_t total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Erases the bar.
    ~Progress();

    /// Says that this many pieces are done, \p elapsed after the start.
    void show(std::int64_t done, Duration elapsed);

private:
    std::FILE* file;
    bool onTerminal;
    std::int64_t whole;
    std::int64_t tenths = 0; ///< printed so far
    Duration shown{-1};      ///< when the bar was drawn last; below 0: never
};

/// The time that is left if the rest takes as long for each piece as the work so far: "1:05 left",
/// or with hours "1:01:05 left". Empty before the first piece is done.
std::string timeLeft(std::int64_t done, std::int64_t total, Progress::Duration elapsed);

} // namespace record
