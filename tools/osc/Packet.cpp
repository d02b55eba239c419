#include "Packet.h"

#include <algorithm>

namespace osc {

namespace {

constexpr std::string_view BUNDLE_MARK("#bundle\0", 8);

std::uint64_t numberOf(Bytes bytes)
{
    std::uint64_t number = 0;
    for (const unsigned char byte : bytes) {
        number = number << 8 | byte;
    }
    return number;
}

/// Takes what a packet consists of from its front. After the first thing that is not there it is
/// broken, and everything else is empty.
class Front {
public:
    explicit Front(Bytes all) : rest(all) {}

    /// \return the next bytes; the zeros that pad them to a multiple of four are taken too
    Bytes take(std::size_t size)
    {
        const std::size_t padded = (size + 3) / 4 * 4;
        if (padded > rest.size()) {
            fail();
            return {};
        }
        const Bytes taken = rest.first(size);
        const Bytes padding = rest.subspan(size, padded - size);
        rest = rest.subspan(padded);
        if (std::ranges::any_of(padding, [](unsigned char byte) { return byte != 0; })) {
            fail();
        }
        return taken;
    }

    std::uint64_t takeNumber(std::size_t size) { return numberOf(take(size)); }

    /// \return the text without its terminator
    std::string_view takeText()
    {
        const auto size = static_cast<std::size_t>(std::ranges::find(rest, 0) - rest.begin());
        const Bytes taken = take(size + 1);
        return taken.empty() ? std::string_view{}
                             : std::string_view(reinterpret_cast<const char*>(taken.data()), size);
    }

    void fail()
    {
        broken = true;
        rest = {};
    }

    bool isBroken() const { return broken; }
    bool isEmpty() const { return rest.empty(); }

private:
    Bytes rest;
    bool broken = false;
};

void takeArgument(Front& front, char type)
{
    const auto isOneOf = [type](std::string_view types) { return types.find(type) != types.npos; };
    if (isOneOf("ifcrm")) {
        front.take(4);
    } else if (isOneOf("hdt")) {
        front.take(8);
    } else if (isOneOf("sS")) {
        front.takeText();
    } else if (type == 'b') {
        front.take(front.takeNumber(4));
    } else if (!isOneOf("TFNI[]")) {
        front.fail();
    }
}

bool divideMessage(Bytes bytes, TimeTag due, std::vector<PacketMessage>& messages)
{
    Front front(bytes);
    const std::string_view address = front.takeText();
    std::string_view types = front.takeText();
    if (!address.starts_with('/') || !types.starts_with(',')) {
        return false;
    }
    types.remove_prefix(1);
    for (const char type : types) {
        takeArgument(front, type);
    }
    if (front.isBroken() || !front.isEmpty()) {
        return false;
    }
    messages.push_back({bytes, address, types, due});
    return true;
}

TimeTag later(TimeTag outer, TimeTag inner)
{
    if (outer == IMMEDIATELY || inner == IMMEDIATELY) {
        return outer == IMMEDIATELY ? inner : outer;
    }
    return between(outer, inner) > std::chrono::nanoseconds::zero() ? inner : outer;
}

/// A message, or a bundle and what is in it.
bool divideElement(Bytes bytes, int depth, TimeTag outer, std::vector<PacketMessage>& messages)
{
    if (bytes.size() % 4 != 0) {
        return false;
    }
    if (bytes.empty() || bytes[0] != '#') {
        return divideMessage(bytes, outer, messages);
    }
    Front front(bytes);
    const Bytes mark = front.take(BUNDLE_MARK.size());
    if (depth == DEEPEST_BUNDLE || !std::ranges::equal(mark, BUNDLE_MARK)) {
        return false;
    }
    const TimeTag time = front.takeNumber(8);
    const TimeTag due = later(outer, time == 0 ? IMMEDIATELY : time);
    while (!front.isEmpty()) {
        const Bytes element = front.take(front.takeNumber(4));
        if (!divideElement(element, depth + 1, due, messages)) {
            return false;
        }
    }
    return !front.isBroken();
}

} // namespace

bool divide(Bytes packet, std::vector<PacketMessage>& messages)
{
    messages.clear();
    const bool wellFormed =
        packet.size() <= LONGEST_PACKET && divideElement(packet, 0, IMMEDIATELY, messages);
    if (!wellFormed) {
        messages.clear();
    }
    return wellFormed;
}

} // namespace osc
