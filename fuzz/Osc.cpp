/// The input are OSC packets, divided by lines "@@@", a quarter of a second apart. What is taken
/// for a message, liblo has to take too.

#include "Harness.h"
#include "Inbox.h"

#include <cmath>
#include <lo/lo.h>

namespace {

using osc::Command;

/// 2023-08-03, as in the time tags of the corpus.
constexpr osc::TimeTag START = 3900000000ULL << 32;
constexpr osc::TimeTag QUARTER = 1ULL << 30;

void check(const Command& command)
{
    using fuzz::expect;
    expect(command.figure >= 0 && command.figure < 3, "there is such a figure");
    const bool isPlace =
        command.kind == Command::Kind::FIGURE || command.kind == Command::Kind::CLICK;
    const float least = isPlace ? 0 : command.kind == Command::Kind::TURN ? -180 : -10;
    const float greatest = isPlace ? 1 : -least;
    expect(command.x >= least && command.x <= greatest && command.y >= least &&
               command.y <= greatest,
           "numbers are in their range");
}

/// Reads the packet's messages with liblo, each from memory of its own size.
void checkMessages(osc::Bytes packet)
{
    std::vector<osc::PacketMessage> messages;
    if (!osc::divide(packet, messages)) {
        fuzz::expect(messages.empty(), "a malformed packet has no messages");
        return;
    }
    for (const osc::PacketMessage& message : messages) {
        if (message.types.find_first_of("r[]") != message.types.npos) {
            continue; // liblo does not know these
        }
        std::vector<unsigned char> bytes(message.bytes.begin(), message.bytes.end());
        lo_message read = lo_message_deserialise(bytes.data(), bytes.size(), nullptr);
        fuzz::expect(read != nullptr, "liblo takes the message");
        fuzz::expect(message.types == lo_message_get_types(read), "both read the same types");
        lo_message_free(read);
    }
}

} // namespace

void fuzz::test(std::string_view input)
{
    static osc::Reader reader;
    osc::Inbox inbox;
    osc::Moment now = {START, std::chrono::nanoseconds(0)};
    std::uint64_t taken = 0;
    for (const std::string_view part : parts(input)) {
        // A copy of its own size: a sanitizer sees what reads beyond it.
        const std::vector<unsigned char> packet(part.begin(), part.end());
        if (!memory::isScarce()) {
            checkMessages(packet);
        }
        call([&] { inbox.add(reader.read(packet), now); });
        const std::vector<Command> commands = call([&] { return inbox.take(now.steady); });
        expect(commands.size() <= osc::Inbox::MOST_TAKEN, "few commands at a time");
        for (const Command& command : commands) {
            check(command);
        }
        taken += commands.size();
        now = {now.wall + QUARTER, now.steady + std::chrono::milliseconds(250)};
    }
    const osc::Counts counts = inbox.counts();
    expect(counts.malformed <= counts.packets && counts.dropped + taken <= counts.messages &&
               counts.late <= counts.messages,
           "the counts add up");
}
