#include "Answer.h"

#include <lo/lo.h>
#include <memory>

namespace osc {

std::vector<unsigned char> answerTo(Request::Kind question, const std::string& status)
{
    const std::unique_ptr<void, decltype(&lo_message_free)> message(lo_message_new(),
                                                                    lo_message_free);
    if (message == nullptr) {
        return {};
    }
    const char* address = "/pong";
    if (question == Request::Kind::STATUS) {
        address = "/status";
        lo_message_add_string(message.get(), status.substr(0, LONGEST_STATUS).c_str());
    }
    std::vector<unsigned char> packet(lo_message_length(message.get(), address));
    std::size_t size = packet.size();
    if (lo_message_serialise(message.get(), address, packet.data(), &size) == nullptr) {
        return {};
    }
    return packet;
}

} // namespace osc
