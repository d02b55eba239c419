#include "CheckMotion.h"

#include "Choreography.h"
#include "Rates.h"

#include <algorithm>
#include <cmath>

namespace media {

namespace {

/// The world position of a figure for a recorded position.
Point worldOf(Point recorded, int figure)
{
    constexpr float SCALE = 0.45f;
    return recorded * SCALE + homeOf(figure);
}

std::string nameOf(int figure)
{
    return "figure " + std::to_string(figure);
}

std::string at(double seconds)
{
    return decimal(seconds, 1) + " s";
}

/// The world position of a figure at each update of the scene until the voice ends.
std::vector<Point> updatesOf(const Motion& motion)
{
    // The scene cannot hold a voice of a day.
    const double most = 86400.0 * Rates::UPDATES;
    const auto updates = static_cast<std::size_t>(std::min(motion.seconds * Rates::UPDATES, most));
    std::vector<Point> places;
    for (std::size_t i = 0; i <= updates; ++i) {
        const double fraction =
            updates == 0 ? 0 : static_cast<double>(i) / static_cast<double>(updates);
        const auto step =
            static_cast<std::size_t>(std::ceil(static_cast<double>(motion.steps) * fraction));
        places.push_back(
            worldOf(motion.path[std::min(step, motion.path.size() - 1)], motion.figure));
    }
    return places;
}

bool isBeside(Point p)
{
    return p.x < 0 || p.x > 1;
}

/// Whether a figure at this place, or its tentacles, can be seen.
bool isVisible(Point p)
{
    constexpr float LOWEST = -0.05f;
    constexpr float HIGHEST = 1.16f;
    constexpr float BESIDE = 0.08f;
    return p.y > LOWEST && p.y < HIGHEST && p.x > -BESIDE && p.x < 1 + BESIDE;
}

/// Whether a movement is so straight up that tentacles hang well at more than the usual speed.
bool rises(Point v)
{
    constexpr float FASTEST = 0.025f;
    return v.y < FASTEST && std::abs(v.x) < v.y / 4;
}

void checkSpeed(const Motion& motion, const std::vector<Point>& places, FileReport& report)
{
    constexpr float STANDS = 0.15f;
    constexpr float JAGGED = 0.012f;
    std::size_t stands = 0;
    std::size_t jagged = 0;
    double firstStand = 0;
    double firstJagged = 0;
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (!isVisible(places[i - 1]) && !isVisible(places[i])) {
            continue;
        }
        const Point v = places[i] - places[i - 1];
        const double seconds = static_cast<double>(i) / Rates::UPDATES;
        if (std::abs(v.x) > STANDS || std::abs(v.y) > STANDS) {
            firstStand = stands++ == 0 ? seconds : firstStand;
        } else if (length(v) > JAGGED && !rises(v)) {
            firstJagged = jagged++ == 0 ? seconds : firstJagged;
        }
    }
    if (stands > 0) {
        report.wrong(nameOf(motion.figure) + " moves by more than 0.15 in an update, " +
                     std::to_string(stands) + " times, first at " + at(firstStand) +
                     ": it stands still there, and jumps");
    }
    if (jagged > 0) {
        report.hint(nameOf(motion.figure) + " moves by more than 0.012 in an update, " +
                    std::to_string(jagged) + " times, first at " + at(firstJagged) +
                    ": its tentacles get long and jagged");
    }
}

/// Remarks on a figure that takes its fish along as it leaves.
/// \param seen  the number of places until the last one in the picture
void checkExit(const Motion& motion, const std::vector<Point>& places, std::size_t seen,
               FileReport& report)
{
    constexpr float FASTER_THAN_FISH = 0.0115f; // fish swim 0.007, and get away from the walls
    constexpr std::size_t LOOK = 10;
    if (seen < LOOK || seen == places.size() || isBeside(places[seen])) {
        return;
    }
    const Point before = places[seen - LOOK];
    const bool fast = places[seen - 1].y - before.y > FASTER_THAN_FISH * (LOOK - 1);
    if (places[seen].y > 1 && fast) {
        return;
    }
    report.hint(nameOf(motion.figure) + " leaves " +
                (places[seen].y < 0 ? "through the bottom of the picture"
                                    : "slowly through the top of the picture") +
                ", at " + at(static_cast<double>(seen) / Rates::UPDATES) +
                ": the fish that follow it are lost; through the top, by 0.012 or more in an "
                "update, it would leave them behind");
}

void checkPlace(const Motion& motion, const std::vector<Point>& places, FileReport& report)
{
    // Figures rest 0.1 below the visible world.
    constexpr float BELOW = -0.15f;
    const auto isInside = [](Point p) { return !isBeside(p) && p.y >= 0 && p.y <= 1; };
    const auto end = std::find_if(places.rbegin(), places.rend(), isInside);
    const auto seen = static_cast<std::size_t>(places.rend() - end); // until the last moment of it
    std::size_t astray = 0;
    double firstAstray = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Point p = places[i];
        // Above the picture a figure may wait for the end.
        if (isBeside(p) || p.y < BELOW || (p.y > 1 && i < seen)) {
            firstAstray = astray++ == 0 ? static_cast<double>(i) / Rates::UPDATES : firstAstray;
        }
    }
    if (seen == 0) {
        report.wrong(nameOf(motion.figure) + " is never in the picture");
    } else if (astray > 0) {
        report.hint(nameOf(motion.figure) + " leaves the picture, first at " + at(firstAstray) +
                    ", for " + at(static_cast<double>(astray) / Rates::UPDATES) + " in all");
    }
    checkExit(motion, places, seen, report);
}

void checkRest(const Motion& motion, FileReport& report)
{
    constexpr float NEAR = 0.1f;
    const Point first = motion.path.front();
    const Point last = motion.path[std::min(motion.steps, motion.path.size() - 1)];
    if (first.x != 0 || first.y != 0) {
        report.hint("record 0 of " + nameOf(motion.figure) +
                    " is not at 0 0: before the voice starts and after its end, the figure drops "
                    "from there to below the picture");
    }
    // When a shorter recording ends the dance early, the remark goes to that one: see checkLengths.
    const bool whole = motion.path.size() <= motion.steps + 1;
    if (whole && length(last) > NEAR) {
        report.hint(nameOf(motion.figure) + " does not end at 0 0: at the end of the voice it "
                                            "jumps from the picture");
    }
}

} // namespace

void checkMotion(const Motion& motion, FileReport& report)
{
    const std::vector<Point> places = updatesOf(motion);
    checkSpeed(motion, places, report);
    checkPlace(motion, places, report);
    checkRest(motion, report);
}

} // namespace media
