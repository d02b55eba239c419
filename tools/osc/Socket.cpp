#include "Socket.h"

#include "PortTaken.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <stdexcept>
#include <unistd.h>

namespace osc {

namespace {

using Addresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

/// \return those of the name, at least one; none: of the text that why gets
Addresses find(const std::string& name, std::uint16_t port, std::string& why)
{
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_DGRAM;
    wanted.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int status = getaddrinfo(name.c_str(), std::to_string(port).c_str(), &wanted, &found);
    if (status != 0) {
        why = gai_strerror(status);
        found = nullptr;
    }
    return {found, freeaddrinfo};
}

/// \return a bound socket; -1: errno says why not
int open(const addrinfo& address)
{
    const int file = socket(address.ai_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (file != -1 && bind(file, address.ai_addr, address.ai_addrlen) != 0) {
        const int error = errno;
        close(file);
        errno = error;
        return -1;
    }
    return file;
}

std::string textOf(int error)
{
    if (error == EADDRINUSE) {
        return "another program listens there";
    }
    if (error == EADDRNOTAVAIL) {
        return "that is no address of this machine";
    }
    return std::strerror(error);
}

} // namespace

Socket::Socket(const std::string& address, std::uint16_t port)
{
    std::string why;
    bool taken = false;
    const Addresses addresses = find(address, port, why);
    // Senders know IPv4 best, and a name such as localhost may be both.
    for (const int family : {AF_INET, AF_INET6}) {
        for (const addrinfo* next = addresses.get(); next != nullptr; next = next->ai_next) {
            if (file == -1 && next->ai_family == family) {
                file = open(*next);
                taken = errno == EADDRINUSE;
                why = textOf(errno);
            }
        }
    }
    if (file == -1) {
        const std::string line =
            "OSC: cannot listen at " + address + ", port " + std::to_string(port) + ": " + why;
        if (taken) {
            throw PortTaken(line);
        }
        throw std::runtime_error(line);
    }
}

Socket::~Socket()
{
    close(file);
}

std::uint16_t Socket::port() const
{
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    getsockname(file, reinterpret_cast<sockaddr*>(&address), &size);
    // The port has the same place in both families.
    return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

ssize_t Socket::receive(unsigned char* buffer, Sender& from) const
{
    from.size = sizeof from.address;
    return recvfrom(file, buffer, LONGEST_PACKET, MSG_DONTWAIT,
                    reinterpret_cast<sockaddr*>(&from.address), &from.size);
}

void Socket::send(Bytes packet, const Sender& to) const
{
    sendto(file, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&to.address), to.size);
}

} // namespace osc
