#include "Program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

std::map<std::string, std::string> ownEnvironment()
{
    std::map<std::string, std::string> variables;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        const std::size_t equals = text.find('=');
        variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    return variables;
}

std::vector<std::string> changedEnvironment(const Program::Environment& changes)
{
    std::map<std::string, std::string> variables = ownEnvironment();
    for (const auto& [name, value] : changes) {
        if (value) {
            variables[name] = *value;
        } else {
            variables.erase(name);
        }
    }
    std::vector<std::string> entries;
    for (const auto& [name, value] : variables) {
        entries.push_back(name + "=" + value);
    }
    return entries;
}

/// The texts as exec takes them; they stay with \p texts.
std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// How a terminal starts a program, however the test was started: a shell that runs it in the
/// background has it ignore SIGINT, and what is ignored or blocked would be so in its children.
class Attributes {
public:
    Attributes()
    {
        posix_spawnattr_init(&attributes);
        sigset_t usual;
        sigemptyset(&usual);
        posix_spawnattr_setsigmask(&attributes, &usual);
        for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) {
            sigaddset(&usual, signal);
        }
        posix_spawnattr_setsigdefault(&attributes, &usual);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF |
                                                  POSIX_SPAWN_SETSIGMASK);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes); }

    const posix_spawnattr_t* get() const { return &attributes; }

private:
    posix_spawnattr_t attributes;
};

template<typename Condition>
bool waitUntil(Condition condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(5);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace

Program::Program(const std::vector<std::string>& command, const std::filesystem::path& folder,
                 const Environment& changes)
    : out(std::tmpfile(), std::fclose), err(std::tmpfile(), std::fclose)
{
    std::vector<std::string> arguments = command;
    std::vector<std::string> environment = changedEnvironment(changes);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addchdir_np(&files, folder.c_str());
    posix_spawn_file_actions_adddup2(&files, fileno(out.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, fileno(err.get()), STDERR_FILENO);
    const Attributes attributes;
    const int error = posix_spawnp(&process, arguments[0].c_str(), &files, attributes.get(),
                                   pointersTo(arguments).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error("cannot start " + arguments[0]);
    }
}

Program::~Program()
{
    if (!hasEnded()) {
        kill(-process, SIGTERM);
        wait();
    }
}

bool Program::waitForOutput(const std::string& text)
{
    const auto isThere = [&] { return output().find(text) != std::string::npos; };
    waitUntil([&] { return isThere() || hasEnded(); });
    return isThere();
}

int Program::wait()
{
    if (!waitUntil([this] { return hasEnded(); })) {
        kill(-process, SIGKILL);
        waitUntil([this] { return hasEnded(); });
    }
    return status.value_or(-1);
}

bool Program::hasEnded()
{
    int state = 0;
    if (!status && waitpid(process, &state, WNOHANG) == process) {
        status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    }
    return status.has_value();
}

std::string Program::textOf(std::FILE* file)
{
    std::string text;
    char chunk[65536];
    for (;;) {
        const ssize_t count =
            pread(fileno(file), chunk, sizeof chunk, static_cast<off_t>(text.size()));
        if (count <= 0) {
            return text;
        }
        text.append(chunk, static_cast<std::size_t>(count));
    }
}

std::string printedBy(const std::vector<std::string>& command)
{
    Program program(command);
    program.wait();
    const std::string text = program.output();
    return text.substr(0, text.find_last_not_of('\n') + 1);
}
