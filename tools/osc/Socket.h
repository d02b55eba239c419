#pragma once

#include "Packet.h"

#include <cstdint>
#include <string>
#include <sys/socket.h>

namespace osc {

/// Who sent a packet.
struct Sender {
    sockaddr_storage address;
    socklen_t size;
};

/// A UDP socket that packets arrive at. Its operations never wait.
class Socket {
public:
    /// \param address  of this machine, as a number or a name, of IPv4 or IPv6
    /// \param port     0: any that is free
    /// Throws std::runtime_error with a line for people when it cannot be bound, PortTaken when
    /// another program has the port.
    Socket(const std::string& address, std::uint16_t port);
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket();

    int descriptor() const { return file; }
    std::uint16_t port() const;

    /// \param buffer  LONGEST_PACKET bytes
    /// \return the packet's size; -1: there is none, errno says why
    ssize_t receive(unsigned char* buffer, Sender& from) const;

    /// Sends, or does not when there is no room.
    void send(Bytes packet, const Sender& to) const;

private:
    int file = -1;
};

} // namespace osc
