#include "FigureAddress.h"

#include "CommandLine.h"

#include <limits>

namespace wall {

std::optional<FigureAddress> figureAddressOf(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    FigureAddress address{"127.0.0.1", 0};
    if (colon != std::string::npos) {
        address.host = text.substr(0, colon);
        if (address.host.starts_with('[') && address.host.ends_with(']')) {
            address.host = address.host.substr(1, address.host.size() - 2);
        }
    }
    const std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
    const bool good = commandline::readNumber(
        port, std::uint16_t{1}, std::numeric_limits<std::uint16_t>::max(), address.port);
    return good && !address.host.empty() ? std::optional(address) : std::nullopt;
}

} // namespace wall
