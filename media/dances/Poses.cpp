#include "Poses.h"

#include "Rates.h"

#include <algorithm>
#include <cmath>

namespace media {

namespace {

bool isAbove(Point place)
{
    constexpr float OUT_OF_SIGHT = 1.15f; // the tentacles too
    return place.y >= OUT_OF_SIGHT;
}

/// Where a figure is on its way between two stations.
Point between(const Station& from, const Station& to, double seconds)
{
    // From above the picture to below it: unseen, or it would dash through.
    if (isAbove(from.place) && to.place.y < 0) {
        return from.place;
    }
    const double t = (seconds - from.seconds) / (to.seconds - from.seconds);
    return mix(from.place, to.place, static_cast<float>(t * t * (3 - 2 * t)));
}

} // namespace

Point homeOf(int figure)
{
    return {0.60f - 0.05f * static_cast<float>(figure), -0.10f};
}

std::size_t recordsOf(double seconds)
{
    // A length such as 7.3 s is none of a binary fraction: its last record may be a hair too late.
    constexpr double HAIR = 1e-6;
    return static_cast<std::size_t>(std::ceil(seconds * Rates::RECORDS - HAIR)) + 1;
}

double endOf(const Stations& stations)
{
    double end = 0;
    for (const std::vector<Station>& path : stations) {
        end = path.empty() ? end : std::max(end, path.back().seconds);
    }
    return end;
}

std::vector<Pose> posesThrough(const Stations& stations, double seconds)
{
    std::vector<Pose> poses(recordsOf(seconds));
    for (std::size_t k = 0; k < FIGURES; ++k) {
        Station from{0, homeOf(static_cast<int>(k))};
        auto to = stations[k].begin();
        for (std::size_t i = 0; i < poses.size(); ++i) {
            const double now = static_cast<double>(i) / Rates::RECORDS;
            for (; to != stations[k].end() && to->seconds <= now; ++to) {
                from = *to;
            }
            poses[i][k] = to == stations[k].end() ? from.place : between(from, *to, now);
        }
    }
    return poses;
}

} // namespace media
