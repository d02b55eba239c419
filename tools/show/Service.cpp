#include "Service.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace show {

Service::Service()
{
    const char* const name = std::getenv("NOTIFY_SOCKET");
    const char* const microseconds = std::getenv("WATCHDOG_USEC");
    if (name != nullptr && (name[0] == '/' || name[0] == '@')) {
        address = name;
        socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    }
    if (microseconds != nullptr && std::atof(microseconds) > 0) {
        interval = std::atof(microseconds) / 1e6;
    }
    for (const char* variable : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) {
        unsetenv(variable);
    }
}

Service::~Service()
{
    if (socket != -1) {
        close(socket);
    }
}

void Service::notify(const std::string& state) const
{
    sockaddr_un to{};
    to.sun_family = AF_UNIX;
    if (socket == -1 || address.size() >= sizeof to.sun_path) {
        return;
    }
    std::copy(address.begin(), address.end(), to.sun_path);
    if (to.sun_path[0] == '@') {
        to.sun_path[0] = '\0'; // a name that is no file
    }
    const std::size_t size = offsetof(sockaddr_un, sun_path) + address.size();
    sendto(socket, state.data(), state.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&to),
           static_cast<socklen_t>(size));
}

} // namespace show
