#include "Request.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <lo/lo.h>
#include <memory>
#include <optional>

namespace osc {

namespace {

using Kind = Command::Kind;

/// The most numbers that a message has.
constexpr std::size_t MOST_NUMBERS = 2;

/// What may stand behind an address: so many numbers of this range, 0 among them. A button has
/// none.
struct Method {
    std::string_view address;
    Kind kind;
    std::size_t numbers;
    double least;
    double greatest;
};

constexpr std::array<Method, 6> METHODS = {
    {{"/view/zoom", Kind::ZOOM, 1, -10, 10},
     {"/view/move", Kind::MOVE, 2, -1, 1},
     {"/view/turn", Kind::TURN, 2, -180, 180},
     {"/click", Kind::CLICK, 2, 0, 1},
     {"/seed", Kind::SEED, 1, 0, std::numeric_limits<std::uint32_t>::max()},
     {"/restart", Kind::RESTART, 0, 0, 0}}};
// Behind /figure/N.
constexpr std::array<Method, 2> FIGURE_METHODS = {
    {{"", Kind::FIGURE, 2, 0, 1}, {"/release", Kind::RELEASE, 0, 0, 0}}};
constexpr std::string_view FIGURE = "/figure/";

struct Numbers {
    std::size_t count = 0;
    std::array<double, MOST_NUMBERS> values = {}; ///< 0 where there are fewer
};

/// \return none when something else than numbers is there, or too many
std::optional<Numbers> numbersOf(const PacketMessage& message)
{
    // Nothing but numbers gets to liblo, whose reader looks for a blob's size beyond the end of a
    // message that lacks it.
    if (message.types.size() > MOST_NUMBERS ||
        message.types.find_first_not_of("ifhd") != message.types.npos) {
        return std::nullopt;
    }
    void* bytes = const_cast<unsigned char*>(message.bytes.data()); // which it only reads
    const std::unique_ptr<void, decltype(&lo_message_free)> read(
        lo_message_deserialise(bytes, message.bytes.size(), nullptr), lo_message_free);
    if (read == nullptr) {
        return std::nullopt;
    }
    Numbers numbers;
    for (const char type : message.types) {
        lo_arg* const argument = lo_message_get_argv(read.get())[numbers.count];
        numbers.values[numbers.count] =
            static_cast<double>(lo_hires_val(static_cast<lo_type>(type), argument));
        ++numbers.count;
    }
    return numbers;
}

/// A button may send one number: 0 when it is let go.
Request press(const Method& method, const Numbers& numbers, int figure)
{
    if (numbers.count > 1 || !std::isfinite(numbers.values[0])) {
        return {Request::Kind::REFUSED};
    }
    if (numbers.count == 1 && numbers.values[0] == 0) {
        return {Request::Kind::NOTHING};
    }
    return {Request::Kind::COMMAND, {method.kind, figure}};
}

Request readNumbers(const PacketMessage& message, const Method& method, int figure)
{
    const std::optional<Numbers> numbers = numbersOf(message);
    if (!numbers) {
        return {Request::Kind::REFUSED};
    }
    if (method.numbers == 0) {
        return press(method, *numbers, figure);
    }
    const auto [x, y] = numbers->values;
    const auto isInRange = [&](double value) {
        return value >= method.least && value <= method.greatest; // which NaN is not
    };
    if (numbers->count != method.numbers || !isInRange(x) || !isInRange(y)) {
        return {Request::Kind::REFUSED};
    }
    if (method.kind == Kind::SEED) {
        if (x != std::floor(x)) {
            return {Request::Kind::REFUSED};
        }
        return {Request::Kind::COMMAND, {Kind::SEED, 0, 0, 0, static_cast<std::uint32_t>(x)}};
    }
    return {Request::Kind::COMMAND,
            {method.kind, figure, static_cast<float>(x), static_cast<float>(y)}};
}

Request readQuestion(const PacketMessage& message, Request::Kind question)
{
    return {message.types.empty() ? question : Request::Kind::REFUSED};
}

} // namespace

Request readRequest(const PacketMessage& message)
{
    std::string_view address = message.address;
    if (address == "/ping") {
        return readQuestion(message, Request::Kind::PING);
    }
    if (address == "/status") {
        return readQuestion(message, Request::Kind::STATUS);
    }
    std::span<const Method> methods = METHODS;
    int figure = 0;
    if (address.starts_with(FIGURE) && address.size() > FIGURE.size()) {
        figure = address[FIGURE.size()] - '1';
        address.remove_prefix(FIGURE.size() + 1);
        methods = figure >= 0 && figure < 3 ? FIGURE_METHODS : std::span<const Method>{};
    }
    const auto method = std::ranges::find(methods, address, &Method::address);
    return method == methods.end() ? Request{} : readNumbers(message, *method, figure);
}

} // namespace osc
