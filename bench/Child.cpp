#include "Child.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

double clockSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

[[noreturn]] void fail(const char* what)
{
    std::printf("%s failed\n", what);
    std::exit(1);
}

} // namespace

double inChild(const std::function<double()>& function)
{
    int ends[2];
    std::fflush(stdout);
    if (pipe(ends) != 0) {
        fail("pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        const double value = function();
        std::fflush(stdout);
        const bool written = write(ends[1], &value, sizeof value) == sizeof value;
        _exit(written ? 0 : 1);
    }
    double value = 0;
    close(ends[1]);
    const bool got = read(ends[0], &value, sizeof value) == sizeof value;
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0 || !got) {
        fail("A process of its own");
    }
    return value;
}

double wallClock()
{
    return clockSeconds(CLOCK_MONOTONIC);
}

double threadClock()
{
    return clockSeconds(CLOCK_THREAD_CPUTIME_ID);
}

double processClock()
{
    return clockSeconds(CLOCK_PROCESS_CPUTIME_ID);
}

double peakMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024;
}

} // namespace bench
