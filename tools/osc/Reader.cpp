#include "Reader.h"

namespace osc {

Reader::Reader()
{
    messages.reserve(MOST_MESSAGES);
    reading.commands.reserve(MOST_MESSAGES);
    reading.questions.reserve(MOST_MESSAGES);
}

const Reading& Reader::read(Bytes packet)
{
    reading.commands.clear();
    reading.questions.clear();
    reading.counts = {};
    reading.counts.packets = 1;
    reading.counts.malformed = divide(packet, messages) ? 0 : 1;
    reading.counts.messages = messages.size();
    for (const PacketMessage& message : messages) {
        add(readRequest(message), message.due);
    }
    return reading;
}

void Reader::add(const Request& request, TimeTag due)
{
    switch (request.kind) {
    case Request::Kind::COMMAND:
        reading.commands.push_back({request.command, due});
        break;
    case Request::Kind::PING:
    case Request::Kind::STATUS:
        reading.questions.push_back(request.kind);
        break;
    case Request::Kind::NOTHING:
        break;
    case Request::Kind::UNKNOWN:
        ++reading.counts.unknown;
        break;
    case Request::Kind::REFUSED:
        ++reading.counts.refused;
        break;
    }
}

} // namespace osc
