#include "WriteAll.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace record {

bool writeAll(int descriptor, const void* data, std::size_t bytes)
{
    const auto* at = static_cast<const char*>(data);
    while (bytes > 0) {
        const ssize_t count = ::write(descriptor, at, bytes);
        if (count > 0) {
            at += count;
            bytes -= static_cast<std::size_t>(count);
        } else if (count < 0 && errno == EAGAIN) {
            // Somebody who shares it does not want to wait.
            pollfd ready{descriptor, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (count < 0 && errno != EINTR) {
            return false;
        }
    }
    return true;
}

} // namespace record
