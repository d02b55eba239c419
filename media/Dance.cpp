#include "Dance.h"

#include "Point.h"

#include <cstdio>

namespace media {

namespace {

std::string record(int row, int seconds)
{
    const float t = static_cast<float>(row) / 90;
    const float present = smoothstep(1, 6, t) * smoothstep(static_cast<float>(seconds) - 1.5f,
                                                           static_cast<float>(seconds) - 8, t);
    std::string line;
    char text[128];
    std::snprintf(text, sizeof text, "%.4f", static_cast<double>(t));
    line = text;
    for (int k = 0; k < 3; ++k) {
        const float a = t * 0.6f + static_cast<float>(k) * 2.1f;
        const float px = present * 0.5f * std::sin(a);
        const float py = present * (1.4f + 0.4f * std::sin(a * 1.7f));
        std::snprintf(text, sizeof text, " %.5f %.5f 0 0 0 0", static_cast<double>(px),
                      static_cast<double>(py));
        line += text;
    }
    return line + " 0 0 0 0 0 0\n";
}

} // namespace

std::vector<File> makeDance(const Request& request)
{
    const int records = 90 * request.seconds;
    std::string dance;
    for (int i = 0; i < records; ++i) {
        dance += record(i, request.seconds);
    }
    const std::string rehearsal = dance;
    dance += record(records, request.seconds);
    return {{"data/mocap.txt", "MOCAP\n2 3\ndata/dance.txt\ndata/rehearsal.txt\n", "2 recordings"},
            {"data/dance.txt", dance, std::to_string(records + 1) + " records"},
            {"data/rehearsal.txt", rehearsal, std::to_string(records) + " records"}};
}

} // namespace media
