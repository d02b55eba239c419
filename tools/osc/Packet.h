#pragma once

#include "TimeTag.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace osc {

using Bytes = std::span<const unsigned char>;

/// A message where it lies in its packet, from which it borrows.
struct PacketMessage {
    Bytes bytes; ///< all of it
    std::string_view address;
    std::string_view types; ///< type tags, without the comma
    TimeTag due;            ///< of its bundle; IMMEDIATELY outside of one
};

/// The longest packet: what fits into a datagram.
constexpr std::size_t LONGEST_PACKET = 65507;
/// So many bundles may lie in each other.
constexpr int DEEPEST_BUNDLE = 8;
/// More messages than this do not fit into a packet.
constexpr std::size_t MOST_MESSAGES = LONGEST_PACKET / 12;

/// Divides a packet into its messages and checks its structure, as OSC 1.0 describes it, to the
/// last byte: lengths, padding with zeros to multiples of four, type tags (i f h d t c r m s S b T
/// F N I [ ]), and that their arguments fill the message exactly. A message without type tags is no
/// message here.
///
/// A bundle in a bundle is not due before the outer one. A time tag of 0 is taken for IMMEDIATELY.
/// \param messages  is overwritten; in the order of the packet. Nothing is allocated when it has a
/// capacity
///                  of MOST_MESSAGES
/// \return false: the packet is malformed, and there are no messages
bool divide(Bytes packet, std::vector<PacketMessage>& messages);

} // namespace osc
