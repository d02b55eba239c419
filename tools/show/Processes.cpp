#include "Processes.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
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
    pid_t group = 0;
    long pages = 0; ///< resident
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
                    " %*c %d %d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d "
                    "%*u %*u %ld",
                    &stat.parent, &stat.group, &stat.pages) != 3) {
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
    setpgid(0, 0);
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
    for (const auto& [showing, group] : groups) {
        ::kill(-group, SIGKILL);
    }
    // Those that have left their groups, and what they have started meanwhile.
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
    setpgid(child, child); // whoever is first
    groups[showing] = child;
}

void Processes::signal(Id showing, int signal) const
{
    const auto group = groups.find(showing);
    if (group != groups.end()) {
        ::kill(-group->second, signal);
    }
}

void Processes::reap(const std::function<void(Id, const End&)>& onEnd)
{
    siginfo_t ended{};
    // It keeps its number until its status is fetched: no other group can have that.
    while (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
        const pid_t child = std::exchange(ended.si_pid, 0);
        const auto group = std::find_if(groups.begin(), groups.end(),
                                        [&](const auto& entry) { return entry.second == child; });
        if (group != groups.end()) {
            ::kill(-child, SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (group != groups.end()) {
            const Id showing = group->first;
            groups.erase(group);
            killStrays();
            onEnd(showing, endOf(status));
        }
    }
}

std::optional<Id> Processes::showingOf(pid_t process) const
{
    // From parent to parent, as a launcher of several processes gives each a group of its own.
    for (auto stat = readStat(folderOf(process)); stat; stat = readStat(folderOf(stat->parent))) {
        for (const auto& [showing, first] : groups) {
            if (first == stat->group) {
                return showing;
            }
        }
    }
    return {};
}

void Processes::killStrays() const
{
    forEachProcess([&](pid_t process, const Stat& stat) {
        const bool isKnown = std::any_of(groups.begin(), groups.end(), [&](const auto& entry) {
            return entry.second == stat.group;
        });
        if (stat.parent == getpid() && !isKnown) {
            ::kill(process, SIGKILL);
        }
    });
}

long Processes::memory(Id showing) const
{
    const auto group = groups.find(showing);
    long pages = 0;
    if (group != groups.end()) {
        forEachProcess([&](pid_t, const Stat& stat) {
            pages += stat.group == group->second ? stat.pages : 0;
        });
    }
    return pages * sysconf(_SC_PAGESIZE);
}

} // namespace show
