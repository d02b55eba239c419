#include "Dance.h"

#include "Choreography.h"
#include "PoseTable.h"
#include "Rates.h"

#include <cmath>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace media {

namespace {

/// The scene scales a recorded position by this and adds the figure's home.
constexpr float SENSOR_SCALE = 0.45f;

/// Appends a number with a fixed count of digits, and never "-0".
void append(std::string& line, double value, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, " %.*f", digits, value);
    const bool zero = std::string_view(text).find_first_of("123456789") == std::string_view::npos;
    line += zero ? " 0" : text;
}

/// The heading of a figure in degrees, counter-clockwise from straight up, at each pose. A figure
/// at rest keeps its heading.
std::vector<double> headings(const std::vector<Pose>& poses, std::size_t figure)
{
    std::vector<double> degrees(poses.size(), 0.0);
    for (std::size_t i = 1; i < poses.size(); ++i) {
        const Point way = poses[i][figure] - poses[i - 1][figure];
        degrees[i] = length(way) < 1e-5f
                         ? degrees[i - 1]
                         : static_cast<double>(std::atan2(-way.x, way.y) * 180 / PI);
    }
    return degrees;
}

/// 25 words a record: the time, for each figure a position and an orientation of three words each,
/// and six words that the scene skips.
std::string writeRecords(const std::vector<Pose>& poses, std::size_t count)
{
    std::array<std::vector<double>, FIGURES> turned;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        turned[k] = headings(poses, k);
    }
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char time[32];
        std::snprintf(time, sizeof time, "%.4f", static_cast<double>(i) / Rates::RECORDS);
        text += time;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            const Point off = (poses[i][k] - homeOf(static_cast<int>(k))) * (1 / SENSOR_SCALE);
            append(text, static_cast<double>(off.x), 5);
            append(text, static_cast<double>(off.y), 5);
            text += " 0 0 0";
            append(text, turned[k][i], 1);
        }
        text += " 0 0 0 0 0 0\n";
    }
    return text;
}

/// The dance of a table of poses, for a voice of so many seconds.
std::vector<Pose> danceOf(const std::filesystem::path& table, double seconds)
{
    const Stations stations = readPoseTable(table);
    const double end = endOf(stations);
    // Somebody types 120 for a voice of 119.7 s: the figures are home by then.
    if (end > std::ceil(seconds)) {
        std::ostringstream text;
        text << table.string() << ": its last time, " << end << ", is after the end of the voice, "
             << seconds << " s";
        throw std::runtime_error(text.str());
    }
    return posesThrough(stations, seconds);
}

} // namespace

std::vector<File> makeDance(const Request& request)
{
    // When the voice ends, the scene's clock reaches the number of records of the shortest
    // recording. A figure whose own recording has no record there ends the scene. The rehearsal is
    // one record shorter, so that the dance has one there.
    const Score score = makeScore(request.seconds);
    const Region view = request.wide ? WIDE_VIEW : SQUARE_VIEW;
    const bool fromTable = !request.table.empty();
    const std::vector<Pose> dance =
        fromTable ? danceOf(request.table, request.seconds) : choreograph(score, view);
    const std::vector<Pose> rehearsal = fromTable ? dance : rehearse(score, view);
    const std::size_t records = dance.size();
    return {{"data/mocap.txt", "MOCAP\n2 3\ndata/dance.txt\ndata/rehearsal.txt\n", "2 recordings"},
            {"data/dance.txt", writeRecords(dance, records), std::to_string(records) + " records"},
            {"data/rehearsal.txt", writeRecords(rehearsal, records - 1),
             std::to_string(records - 1) + " records"}};
}

} // namespace media
