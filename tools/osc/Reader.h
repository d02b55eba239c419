#pragma once

#include "Counts.h"
#include "Request.h"

#include <vector>

namespace osc {

/// What a packet asked for.
struct Reading {
    struct Timed {
        Command command;
        TimeTag due; ///< IMMEDIATELY, or the time of its bundle
    };
    std::vector<Timed> commands;          ///< in the order of the packet
    std::vector<Request::Kind> questions; ///< PING or STATUS
    Counts counts; ///< of this packet: packets, malformed, messages, unknown and refused
};

/// Reads packets. What it needs for the fullest one is allocated at the start.
class Reader {
public:
    Reader();

    /// \return into this object, until the next read
    const Reading& read(Bytes packet);

private:
    void add(const Request& request, TimeTag due);

    std::vector<PacketMessage> messages;
    Reading reading;
};

} // namespace osc
