#include "Rank.h"

namespace wall {

namespace {

/// Takes the last line that is not empty from the end of a text.
std::string takeLastLine(std::string& text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    const std::size_t start = text.find_last_of('\n') + 1;
    std::string line = text.substr(start);
    text.erase(start);
    return line;
}

} // namespace

std::string Rank::readersComplaint(const std::string& errors) const
{
    std::string text = messages->text() + errors;
    std::string line = takeLastLine(text);
    if (line.find('/') == std::string::npos) {
        // The file's name stands in the line before.
        line.insert(0, takeLastLine(text) + ": ");
    }
    return "the media cannot be played: " + line;
}

} // namespace wall
