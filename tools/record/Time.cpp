#include "Time.h"

#include <charconv>

namespace record {

namespace {

constexpr std::size_t DECIMALS = 6;

bool isDigits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

} // namespace

std::optional<Microseconds> parseTime(std::string_view text)
{
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view part = point == std::string_view::npos ? "0" : text.substr(point + 1);
    if (!isDigits(whole) || !isDigits(part) || part.size() > DECIMALS) {
        return std::nullopt;
    }
    Microseconds seconds = 0;
    const auto [stop, error] = std::from_chars(whole.data(), whole.data() + whole.size(), seconds);
    if (error != std::errc() || seconds > LONGEST_TIME / SECOND) {
        return std::nullopt;
    }
    Microseconds fraction = 0;
    for (std::size_t i = 0; i < DECIMALS; ++i) {
        fraction = fraction * 10 + (i < part.size() ? part[i] - '0' : 0);
    }
    const Microseconds time = seconds * SECOND + fraction;
    return time > LONGEST_TIME ? std::nullopt : std::optional(time);
}

} // namespace record
