#include "EncoderReport.h"

#include "CommandLine.h"

#include <algorithm>

namespace record {

namespace {

constexpr std::size_t LONGEST_LINE = 200;
constexpr std::int64_t MOST_FRAMES = INT32_MAX;

} // namespace

void EncoderReport::read(std::string_view bytes)
{
    for (const char byte : bytes) {
        if (byte == '\n') {
            readLine();
            line.clear();
        } else if (line.size() < LONGEST_LINE) {
            line += byte;
        }
    }
}

void EncoderReport::readLine()
{
    const std::size_t end = line.find('=');
    const std::string name = line.substr(0, end);
    if (name == "progress") {
        frames = std::max<std::int64_t>(encoded + dropped - repeated, 0);
        return;
    }
    std::int64_t value = 0;
    if (end == std::string::npos ||
        !commandline::readNumber(line.substr(end + 1), std::int64_t{0}, MOST_FRAMES, value)) {
        return;
    }
    if (name == "frame") {
        encoded = value;
    } else if (name == "drop_frames") {
        dropped = value;
    } else if (name == "dup_frames") {
        repeated = value;
    }
}

} // namespace record
