#pragma once

#include "Command.h"
#include "Packet.h"

namespace osc {

/// What a message comes to.
struct Request {
    enum class Kind {
        COMMAND, ///< there is a command
        PING,    ///< to be answered with /pong
        STATUS,  ///< to be answered with a line of text
        NOTHING, ///< a button was let go
        UNKNOWN, ///< nothing has this address
        REFUSED  ///< wrong types, or a number that is not finite or out of range
    };
    Kind kind = Kind::UNKNOWN;
    Command command = {};
};

/// Reads one message:
///
///     /figure/N x y        FIGURE; N is 1, 2 or 3
///     /figure/N/release    RELEASE
///     /view/zoom steps     ZOOM
///     /view/move dx dy     MOVE
///     /view/turn dx dy     TURN
///     /click x y           CLICK
///     /seed n              SEED; a whole number
///     /restart             RESTART
///     /ping  /status       questions
///
/// Numbers are of type i, f, h or d. Release and restart may have one, as buttons send it: 0 does
/// nothing. An address is one of these; patterns are not expanded.
Request readRequest(const PacketMessage& message);

} // namespace osc
