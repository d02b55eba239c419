#include "Processes.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace show {

namespace {

namespace fs = std::filesystem;

/// What is written about a process below /proc.
struct Stat {
    pid_t parent = 0;
    pid_t session = 0;
    unsigned long long start = 0; ///< clock ticks since the machine's start
    long pages = 0;               ///< resident
};

fs::path folderOf(pid_t process)
{
    return "/proc/" + std::to_string(process);
}

std::optional<Stat> readStat(const fs::path& folder)
{
    std::ifstream file(folder / "stat");
    std::string line;
    std::getline(file, line);
    // The name before may hold anything, parentheses too.
    const std::size_t end = line.rfind(')');
    Stat stat;
    if (end == std::string::npos ||
        std::sscanf(line.c_str() + end + 1,
                    " %*c %d %*d %d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d "
                    "%llu %*u %ld",
                    &stat.parent, &stat.session, &stat.start, &stat.pages) != 4) {
        return {};
    }
    return stat;
}

/// Calls \p look for every process of the machine that can be looked at.
void forEachProcess(const std::function<void(pid_t, const Stat&)>& look)
{
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; })) {
            if (const auto stat = readStat(entry->path())) {
                look(std::stoi(name), *stat);
            }
        }
    }
}

End endOf(int status)
{
    if (WIFSIGNALED(status)) {
        return {true, "by signal " + std::to_string(WTERMSIG(status))};
    }
    return {WEXITSTATUS(status) != 0, "with status " + std::to_string(WEXITSTATUS(status))};
}

/// The child's side of a start. Does not return.
[[noreturn]] void become(const std::vector<std::string>& command, int output, pid_t parent)
{
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(1); // it has ended before the line above
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing != STDIN_FILENO) {
        dup2(nothing, STDIN_FILENO);
        close(nothing);
    }
    if (output >= 0) {
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
    }
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    execvp(words[0], words.data());
    std::fprintf(stderr, "kelpix-show: cannot start %s: %s\n", words[0], std::strerror(errno));
    _exit(127);
}

} // namespace

Processes::Processes()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

Processes::~Processes()
{
    for (const auto& [showing, first] : sessions) {
        ::kill(first, SIGKILL);
    }
    // What they have left comes here, and what that has started meanwhile.
    const pid_t self = getpid();
    do {
        forEachProcess([&](pid_t process, const Stat& stat) {
            if (stat.parent == self) {
                ::kill(process, SIGKILL);
            }
        });
    } while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR);
}

void Processes::start(Id showing, const std::vector<std::string>& command, int output)
{
    const pid_t self = getpid();
    const pid_t child = fork();
    if (child == -1) {
        throw std::runtime_error(std::string("cannot start a process: ") + std::strerror(errno));
    }
    if (child == 0) {
        become(command, output, self);
    }
    sessions[showing] = child;
}

void Processes::signal(Id showing, int signal) const
{
    const auto first = sessions.find(showing);
    // Before it has a session, it has no group either.
    if (first != sessions.end() && ::kill(-first->second, signal) != 0) {
        ::kill(first->second, signal);
    }
}

void Processes::reap(const std::function<void(Id, const End&)>& onEnd)
{
    bool hasEnded = false;
    siginfo_t ended{};
    // It keeps its number until its status is fetched: no other session can have that.
    while (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
        const pid_t child = std::exchange(ended.si_pid, 0);
        const auto session = std::find_if(sessions.begin(), sessions.end(),
                                          [&](const auto& entry) { return entry.second == child; });
        if (session != sessions.end()) {
            forEachProcess([&](pid_t process, const Stat& stat) {
                if (stat.session == child && process != child) {
                    ::kill(process, SIGKILL);
                }
            });
        }
        int status = 0;
        waitpid(child, &status, 0);
        hasEnded = true;
        if (session != sessions.end()) {
            const Id showing = session->first;
            sessions.erase(session);
            onEnd(showing, endOf(status));
        }
    }
    if (hasEnded) {
        killStrays(); // also what a stray that has been killed has left
    }
}

std::optional<Id> Processes::showingIn(pid_t session) const
{
    for (const auto& [showing, first] : sessions) {
        if (first == session) {
            return showing;
        }
    }
    return {};
}

std::optional<Id> Processes::showingOf(pid_t process) const
{
    // From parent to parent: a program may give those that it starts sessions of their own.
    for (auto stat = readStat(folderOf(process)); stat; stat = readStat(folderOf(stat->parent))) {
        if (const auto showing = showingIn(stat->session)) {
            return showing;
        }
    }
    return {};
}

void Processes::killStrays() const
{
    // The oldest of the showings that live: what is older than that cannot be of any of them.
    auto oldest = std::numeric_limits<unsigned long long>::max();
    for (const auto& [showing, first] : sessions) {
        const auto stat = readStat(folderOf(first));
        oldest = std::min(oldest, stat ? stat->start : 0);
    }
    forEachProcess([&](pid_t process, const Stat& stat) {
        if (stat.parent == getpid() && !showingIn(stat.session) && stat.start < oldest) {
            ::kill(process, SIGKILL);
        }
    });
}

long Processes::memory(Id showing) const
{
    long pages = 0;
    forEachProcess([&](pid_t process, const Stat& stat) {
        pages += showingOf(process) == showing ? stat.pages : 0;
    });
    return pages * sysconf(_SC_PAGESIZE);
}

} // namespace show
