#include "Steering.h"

#include "WaterView.h"

#include <cmath>

namespace {

/// How much a figure's speed changes in an update at the most.
constexpr double AGILITY = Steering::FASTEST / 2;

/// A figure this near to its goal is there in the next update.
constexpr double ARRIVAL = 0.0005;

/// Shortens a way that is too long.
Place limited(Place way, double longest)
{
    const double length = std::hypot(way.x, way.y);
    return length > longest ? way * (longest / length) : way;
}

bool isShort(Place way, double longest)
{
    return std::hypot(way.x, way.y) <= longest;
}

/// As single precision has it.
Place rounded(Place place)
{
    return {static_cast<double>(static_cast<float>(place.x)),
            static_cast<double>(static_cast<float>(place.y))};
}

/// Where the recording has a figure. One that is nowhere stays where it was.
Place recordedPlace(const SteeredRecording& recording, std::size_t figure, int step, Place before)
{
    constexpr double FARTHEST = 1000;
    const Vec3 place = recording.placeAt(static_cast<int>(figure), step);
    const Place at{static_cast<double>(place.x), static_cast<double>(place.y)};
    return isShort(at, FARTHEST) ? at : before;
}

bool isInPicture(double coordinate)
{
    return coordinate >= 0 && coordinate <= 1;
}

} // namespace

void Steering::lead(int number, double x, double y)
{
    if (number < 0 || static_cast<std::size_t>(number) >= FIGURES || !isInPicture(x) ||
        !isInPicture(y)) {
        return;
    }
    Figure& figure = figures[static_cast<std::size_t>(number)];
    figure.mode = Mode::LED;
    figure.sentTo = {x, y};
    figure.silence = 0;
}

void Steering::release(int number)
{
    if (isLed(number)) {
        figures[static_cast<std::size_t>(number)].mode = Mode::RETURNS;
    }
}

bool Steering::isLed(int number) const
{
    return number >= 0 && static_cast<std::size_t>(number) < FIGURES &&
           figures[static_cast<std::size_t>(number)].mode == Mode::LED;
}

Poses Steering::next(const SteeredRecording& recording, int step, const WaterView& view)
{
    Poses poses;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        Figure& figure = figures[k];
        const Place recorded = recordedPlace(recording, k, step, figure.recorded);
        const Place recordedWay = begun ? recorded - figure.recorded : Place{};
        figure.recorded = recorded;
        if (!begun) {
            figure.at = recorded;
        }
        if (figure.mode == Mode::LED && figure.silence++ == PATIENCE) {
            figure.mode = Mode::RETURNS;
        }
        switch (figure.mode) {
        case Mode::FOLLOWS:
            figure.at = recorded;
            figure.speed = limited(recordedWay, FASTEST);
            continue;
        case Mode::LED:
            // A place that is not to be seen is kept in mind.
            goTo(figure, view.placeAt(figure.sentTo.x, figure.sentTo.y).value_or(figure.at), {});
            break;
        case Mode::RETURNS:
            goTo(figure, recorded, limited(recordedWay, FASTEST));
            if (figure.at == recorded) {
                figure.mode = Mode::FOLLOWS;
            }
            break;
        }
        poses[k] = rounded(figure.at);
    }
    begun = true;
    return poses;
}

/// One update's way to a goal that moves: half of what is left, but no faster than FASTEST, and no
/// faster away from the speed before than AGILITY.
void Steering::goTo(Figure& figure, Place goal, Place goalSpeed)
{
    const Place way = goal - figure.at;
    if (isShort(way - goalSpeed, ARRIVAL) && isShort(way, FASTEST) &&
        isShort(way - figure.speed, AGILITY)) {
        figure.speed = way;
        figure.at = goal;
        return;
    }
    const Place wanted = limited(goalSpeed + (way - goalSpeed) * 0.5, FASTEST);
    figure.speed = figure.speed + limited(wanted - figure.speed, AGILITY);
    figure.at = figure.at + figure.speed;
}
