#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace wall {

/// Where to listen.
struct FigureAddress {
    std::string host;
    std::uint16_t port;
};

/// Reads [ADDRESS:]PORT, such as "9000", "0.0.0.0:9000" or "[::1]:9000"; without an address it is
/// 127.0.0.1. \return none for another text
std::optional<FigureAddress> figureAddressOf(const std::string& text);

} // namespace wall
