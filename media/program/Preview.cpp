#include "Preview.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace media {

namespace {

/// The recorder of the same installation, or of the same build.
std::filesystem::path findRecorder()
{
    std::error_code error;
    const std::filesystem::path here =
        std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* place : {"kelpix-record", "../tools/record/kelpix-record"}) {
        std::filesystem::path recorder = here / place;
        if (std::filesystem::is_regular_file(recorder, error)) {
            return recorder;
        }
    }
    throw std::runtime_error("no preview: there is no kelpix-record beside this program");
}

/// Runs a command and waits for its end. \return its exit status, -1 after a signal
int run(std::vector<std::string> command)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, arguments[0], nullptr, nullptr, arguments.data(), environ);
    if (error != 0) {
        throw std::runtime_error("no preview: cannot start " + command[0] + ": " +
                                 std::strerror(error));
    }
    int status = 0;
    while (waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

void makePreview(const std::filesystem::path& folder, const std::filesystem::path& picture,
                 bool force)
{
    // As one word each, whatever the names begin with.
    std::vector<std::string> command{findRecorder().string(), "--media=" + folder.string(),
                                     "--sheet=" + picture.string()};
    if (force) {
        command.emplace_back("--force");
    }
    std::fflush(stdout);
    const int status = run(command);
    if (status != 0) {
        throw std::runtime_error(
            "no preview: kelpix-record ended " +
            (status < 0 ? std::string("by a signal") : "with status " + std::to_string(status)));
    }
}

} // namespace media
