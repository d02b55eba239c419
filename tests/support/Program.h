#pragma once

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// A program under test that runs as a process of its own. It and all that it started end with this
/// object.
class Program {
public:
    /// Changes to the environment of the test: a value, or nothing for a variable to be unset.
    using Environment = std::map<std::string, std::optional<std::string>>;

    /// Starts it.
    /// \param command  file, looked up in PATH, and arguments
    /// \param folder   its working directory
    explicit Program(const std::vector<std::string>& command,
                     const std::filesystem::path& folder = "/", const Environment& changes = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    /// What it has written to standard output so far.
    std::string output() const { return textOf(out.get()); }

    /// What it has written to standard error so far.
    std::string errors() const { return textOf(err.get()); }

    /// Waits until \p text has been written to standard output, five minutes at most.
    /// \return false when the time is over, or the program
    bool waitForOutput(const std::string& text);

    /// Waits for its end, five minutes at most, and ends it then.
    /// \return its exit status; 128 plus the number of the signal that ended it
    int wait();

    /// \return whether it has ended by now
    bool hasEnded();

private:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    File out;
    File err;
    pid_t process = -1;
    std::optional<int> status;

    static std::string textOf(std::FILE* file);
};

/// \return what the command printed to standard output, without the final newline
std::string printedBy(const std::vector<std::string>& command);
