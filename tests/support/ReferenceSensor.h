#pragma once

#include "ReferenceMath.h"
#include "ReferenceRandom.h"

#include <list>
#include <vector>

/// One sensor, its body and its tentacles.
namespace reference {

/// The tentacles' points and wave, newest first, and the state of the body.
struct Tentacles {
    struct Point {
        Single x, y, cosine, sine;
    };
    std::list<Point> points;
    Single degree = 0.0f;
    bool initialized = false;
    int counter = 0;
    Single preAngle = 0.0f;
    Mat transform = identity();

    void update(const Triple& sensorVelocity);

    /// The first draw: draws the random numbers of the body. Each draw: moves on by one frame.
    /// \return the frame that is drawn
    int draw(ReferenceRandom& random);

    /// The points of the three strips as they are drawn.
    using Strip = std::vector<std::array<Single, 2>>;
    std::array<Strip, 3> strips(const Triple& sensorVelocity) const;
};

struct Sensor {
    int id;
    Triple pos, oldPos, vel, orientation;
    Single currentTilt = 0.0f;
    Mat transform = identity();
    Tentacles rep;

    Sensor(int sensorId, ReferenceRandom& random);

    /// Moves to \p recorded, which shrinks, and moves the tentacles on.
    void update(Triple& recorded);
};

} // namespace reference
