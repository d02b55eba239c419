#include "StandardStreams.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

void secureStandardStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
    int descriptor = 0;
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO) {
        descriptor = open("/dev/null", O_RDWR);
    }
    close(descriptor);
}
