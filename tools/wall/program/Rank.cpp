#include "Rank.h"

namespace wall {

std::string Rank::readersComplaint(const std::string& errors) const
{
    std::string text = messages->text() + errors;
    text.erase(text.find_last_not_of('\n') + 1);
    return "the media cannot be played: " + text.substr(text.find_last_of('\n') + 1);
}

} // namespace wall
