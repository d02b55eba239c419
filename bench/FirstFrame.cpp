// From the start of the process to the first frame in the window.

#include "Child.h"
#include "Data.h"
#include "Job.h"
#include "ReadyBody.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <initializer_list>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// Runs a program, which ends after its first frame, and takes the time up to that frame: the
/// driver's threads may take their time to end.
double timeOf(std::vector<std::string> command)
{
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (std::string& word : command) {
        words.push_back(word.data());
    }
    words.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        std::printf("no pipe\n");
        std::exit(1);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 3);

    const double start = bench::wallClock();
    pid_t program = 0;
    const bool started =
        posix_spawn(&program, words[0], &actions, nullptr, words.data(), environ) == 0;
    close(ends[1]);
    char done = 0;
    const bool isDrawn = started && read(ends[0], &done, 1) == 1;
    const double seconds = bench::wallClock() - start;
    if (started) {
        waitpid(program, nullptr, 0);
    }
    close(ends[0]);
    posix_spawn_file_actions_destroy(&actions);
    if (!isDrawn) {
        std::printf("%s failed\n", words[0]);
        std::exit(1);
    }
    return seconds;
}

bench::Contender program(const char* name, const std::vector<std::string>& command)
{
    return {.name = name, .measure = [command] { return timeOf(command); }};
}

bench::Job firstFrame()
{
    const bench::ReadyBody body = bench::ReadyBody::compute();
    const std::string numbers =
        bench::writeData("body.bin", {reinterpret_cast<const char*>(body.frames.data()),
                                      body.frames.size() * sizeof body.frames[0]});
    return {"first frame",
            "start",
            1,
            {program("kelpix", {KELPIX_FIRST_FRAME}),
             program("lower bound", {KELPIX_LEAST_FRAME, numbers}),
             program("window", {KELPIX_LEAST_FRAME})}};
}

} // namespace

int main(int argc, char** argv)
{
    // As the launcher starts the program.
    setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=1000", 0);
    return bench::run(argc, argv, {firstFrame});
}
