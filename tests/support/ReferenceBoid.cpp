#include "ReferenceBoid.h"

namespace reference {
namespace {

/// The index of the closest place within 100000, the earlier one of two; -1 for none.
int closest(const std::vector<Triple>& places, const Triple& to)
{
    int found = -1;
    Single least = 100000.0f;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Single d = distance(places[i], to);
        if (least > d) {
            least = d;
            found = static_cast<int>(i);
        }
    }
    return found;
}

/// Where a step of one component leads, in double precision.
double predicted(Single position, Single velocity)
{
    return position.wide() + 0.01 * velocity.wide();
}

} // namespace

Boid::Boid(ReferenceRandom& random)
{
    const int r = random.next();
    const int s = random.next();
    vel = {Single(s % 100 - 50) / 10.0f, Single(r % 100 - 50) / 10.0f, 0.0f};
    orientation = {0.0f, 1.0f, 0.0f};
}

void Boid::pushAway(Triple& avoid, const Triple& other, int initial, int secondary,
                    ReferenceRandom& random) const
{
    const Single d = distance(pos, other);
    const Triple separation = pos - other;
    const Single cruise = 0.03f;
    int span = 0;
    if (cruise / 2.0f > d) {
        span = secondary;
    } else if (cruise > d) {
        span = initial;
    } else {
        return;
    }
    avoid.x = separation.x * Single(random.next() % span + span / 2);
    avoid.y = separation.y * Single(random.next() % span + span / 2);
    avoid.z = separation.z * Single(random.next() % span + span / 2);
}

void Boid::move(const std::vector<const Boid*>& neighbours, const std::vector<Triple>& sensors,
                ReferenceRandom& random)
{
    if (!neighbours.empty()) {
        Triple center;
        Triple average;
        for (const Boid* other : neighbours) {
            center = center + other->pos;
            average = average + other->vel;
        }
        const Single count(static_cast<int>(neighbours.size()));
        center = center / count;
        flockCenter = center;
        average = average / count;
        Triple towards = center - pos;
        Triple along = average - vel;
        if (distance(center, pos) >= 0.125f) {
            along = along * 2.0f;
        }
        towards = towards * 0.14f;
        along = along * 0.04f;
        vel = vel + towards;
        vel = vel + along;
    }

    if (0.05 >= predicted(pos.x, vel.x)) {
        vel.x = vel.x + 0.5f;
    }
    if (predicted(pos.x, vel.x) >= 0.95) {
        vel.x = vel.x - 0.5f;
    }
    if (0.05 >= predicted(pos.y, vel.y)) {
        vel.y = vel.y + 0.5f;
    }
    if (!bubble && predicted(pos.y, vel.y) >= 0.95) {
        vel.y = vel.y - 0.5f;
    }

    std::vector<Triple> places;
    for (const Boid* other : neighbours) {
        places.push_back(other->pos);
    }
    const int near = closest(places, pos);
    if (near >= 0) {
        Triple avoid;
        pushAway(avoid, places[static_cast<std::size_t>(near)], 8, 40, random);
        if (!(avoid.x == 0.0f && avoid.y == 0.0f && avoid.z == 0.0f)) {
            vel = vel + avoid * 2.2f;
        }
    }

    const int sensor = closest(sensors, pos);
    if (sensor >= 0) {
        const Triple& at = sensors[static_cast<std::size_t>(sensor)];
        const Single d = distance(at, pos);
        if (0.25f > d) {
            const bool thrown = bubble && 0.1 > d.wide();
            vel = vel + (thrown ? (pos - at) * 25.0f : (at - pos) * 2.0f);
        }
    }

    if (bubble) {
        vel = vel + (Triple{0.5f, 1.5f, 0.0f} - pos) * 0.65f;
    }

    const Triple heading = normalized(orientation);
    const Triple target = normalized(vel);
    const Single turn = Single(57.295776f) * angleBetween(heading, target);
    if (turn >= -180.0f && turn <= 180.0f) {
        const Triple normal = cross(target - heading, target);
        sprite = product(sprite, rotationAboutZ(normal.z <= 0.0f ? turn : -turn));
    }
    orientation = vel;
    vel = limited(vel, 7.0f);
    translate(vel);
}

std::vector<std::array<Single, 2>> Boid::outline() const
{
    const Single speed = length(vel);
    const Single angle = RADIANS * Single(counter) * speed / 10.0f;
    const Single radius(20.0 * std::cos(angle.wide()));
    std::vector<std::array<Single, 2>> points;
    for (int i = 0; i < 360; ++i) {
        const double around = (RADIANS * Single(i)).wide();
        const Single x(radius.wide() * std::cos(around));
        const Single y(radius.wide() * std::sin(around));
        const Triple point = {x, y, 0.0f};
        const Single scale = dot(vel, point) / (length(vel) * length(point));
        points.push_back({scale * x, scale * y});
    }
    return points;
}

} // namespace reference
