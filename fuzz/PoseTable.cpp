/// The input is a table of poses for kelpix-media --dance.

#include "PoseTable.h"
#include "Harness.h"

#include <cmath>
#include <optional>
#include <stdexcept>

namespace {

/// \return none when the table is refused
std::optional<media::Stations> read(const std::string& path)
{
    try {
        return fuzz::call([&] { return media::readPoseTable(path); });
    } catch (const std::runtime_error& error) {
        fuzz::expect(std::strstr(error.what(), path.c_str()) != nullptr,
                     "the message names the table");
        return std::nullopt;
    }
}

} // namespace

void fuzz::test(std::string_view input)
{
    const std::optional<media::Stations> stations = read(place("table.txt", input));
    if (!stations) {
        return;
    }
    const double end = media::endOf(*stations);
    expect(end > 0 && end <= media::LONGEST_DANCE, "the end is a time");
    for (const std::vector<media::Station>& path : *stations) {
        double before = -1;
        for (const media::Station& station : path) {
            expect(station.seconds > before && station.seconds <= end, "times grow");
            before = station.seconds;
            expect(station.place.x >= -1 && station.place.x <= 2, "x is a place");
            expect(station.place.y >= -1 && station.place.y <= 2, "y is a place");
        }
    }
    // A few seconds of the dance: an hour has 324,000 poses.
    for (const media::Pose& pose : media::posesThrough(*stations, std::fmod(end, 5))) {
        for (const media::Point place : pose) {
            expect(place.x >= -1 && place.x <= 2 && place.y >= -1 && place.y <= 2,
                   "the figures stay between their stations");
        }
    }
}
