#include "MemoryStream.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t BYTES = std::size_t{256} << 20; // of each of the two areas

/// Copies one area into the other, for ever.
[[noreturn]] void stream(int ready)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL); // also when this program is killed
    std::vector<char> from(BYTES, 'a');
    std::vector<char> to(BYTES, 'b');
    if (write(ready, "", 1) != 1) {
        _exit(1);
    }
    for (;;) {
        std::memcpy(to.data(), from.data(), BYTES);
        std::swap(from, to);
    }
}

} // namespace

MemoryStream::MemoryStream()
{
    int ends[2];
    std::fflush(stdout);
    if (pipe(ends) == 0) {
        process = fork();
    }
    if (process == 0) {
        stream(ends[1]);
    }
    char byte = 0;
    if (process < 0 || close(ends[1]) != 0 || read(ends[0], &byte, 1) != 1) {
        std::printf("A process of its own failed\n");
        std::exit(1);
    }
    close(ends[0]);
}

MemoryStream::~MemoryStream()
{
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

} // namespace bench
