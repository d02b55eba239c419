#pragma once

#include "Conductor.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace show {

/// The processes of the showings. Each showing is a session of its own, so that all that it has
/// started can be ended with it, whatever process groups it has made. What leaves its session too
/// becomes a child of this process once it has lost its parent; it is killed when all showings have
/// ended that may have started it.
///
/// SIGCHLD has to be blocked, and the only children of this process are those of this class.
class Processes {
public:
    Processes();
    Processes(const Processes&) = delete;
    Processes& operator=(const Processes&) = delete;

    /// Kills all that is left.
    ~Processes();

    /// Starts a command, which is searched for as by a shell. It gets nothing to read, and is
    /// killed when this process ends. A command that cannot be found ends with status 127, after a
    /// line that says so.
    ///
    /// Throws std::runtime_error, with a line for the user, when no process can be started.
    /// \param output  a descriptor for what it prints; -1 = what this process prints to
    void start(Id showing, const std::vector<std::string>& command, int output = -1);

    /// Sends a signal to the first process of a showing and to its process group.
    void signal(Id showing, int signal) const;

    /// Takes note of the children that have ended. What has been left in a session by its first
    /// process is killed.
    /// \param onEnd  called for each first process
    void reap(const std::function<void(Id, const End&)>& onEnd);

    /// \return the showing whose session the process, or a process above it, is in
    std::optional<Id> showingOf(pid_t process) const;

    /// \return the resident memory of all processes of a showing, in bytes; pages that several of
    ///         them share count for each
    long memory(Id showing) const;

private:
    std::map<Id, pid_t> sessions; ///< by the first process, which is the number of all three

    std::optional<Id> showingIn(pid_t session) const;

    /// Kills the children that belong to no showing.
    void killStrays() const;
};

} // namespace show
