#pragma once

#include <filesystem>
#include <string>
#include <utility>

/// What programs that run unattended tell those who look after them.
namespace status {

/// A file that holds the latest of a program's lines, and never a part of one: whoever opens it
/// reads how things are now. It does not grow.
///
/// A link or a terminal, such as /dev/stderr, gets each line after the other instead, and keeps
/// them all.
class LatestLine {
public:
    explicit LatestLine(std::filesystem::path path) : path(std::move(path)) {}
    LatestLine(const LatestLine&) = delete;
    LatestLine& operator=(const LatestLine&) = delete;
    ~LatestLine();

    /// Throws std::runtime_error, with a line for the user, when nothing can be written there.
    /// Makes the folders above it.
    void check();

    /// Puts a line in place of the one before. Throws std::runtime_error, with a line for the user,
    /// when it cannot be written; the one before is then still there.
    /// \param line  without its end
    void write(const std::string& line);

private:
    std::filesystem::path path;
    int stream = -1; ///< owns: of what gets each line

    bool getsEachLine();
};

} // namespace status
