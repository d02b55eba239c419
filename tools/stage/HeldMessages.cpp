#include "HeldMessages.h"

#include "Printable.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

HeldMessages::HeldMessages(From from)
    : stream(from == From::output ? stdout : stderr), output(-1),
      held(memfd_create("messages", MFD_CLOEXEC))
{
    if (held < 0) {
        throw std::runtime_error(std::string("cannot hold messages: ") + std::strerror(errno));
    }
    std::fflush(stream);
    output = dup(fileno(stream));
    dup2(held, fileno(stream));
}

HeldMessages::~HeldMessages()
{
    std::fflush(stream);
    if (output >= 0) {
        dup2(output, fileno(stream));
        close(output);
    } else {
        close(fileno(stream));
    }
    close(held);
}

std::string HeldMessages::text() const
{
    std::fflush(stream);
    std::string all;
    char chunk[4096];
    off_t from = 0;
    for (ssize_t count = 0; (count = pread(held, chunk, sizeof chunk, from)) > 0; from += count) {
        all.append(chunk, static_cast<std::size_t>(count));
    }
    return Files::printableLines(all);
}

void HeldMessages::show() const
{
    std::fputs(text().c_str(), stderr);
}
