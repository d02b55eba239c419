#pragma once

#include "LiteralMath.h"
#include "ReferenceRandom.h"

#include <list>
#include <vector>

/// One boid and its steering.
namespace literal {

template<typename N>
struct Boid;

/// A cell of the grid.
template<typename N>
struct Cell {
    int column = 0;
    int row = 0;
    std::vector<Boid<N>*> slots;
    std::list<int> vacated; ///< empty slots, the one vacated last in front

    void add(Boid<N>* boid);
    void remove(int id);
};

template<typename N>
struct Boid {
    Triple<N> pos, vel, orientation, flockCenter;
    bool bubble = false;
    int id = 0;
    int counter = 0;
    N searchRadius = 0.1f;
    bool outOfBound = false;
    bool alive = true;
    Cell<N>* cell = nullptr;
    Mat<N> transform = identity<N>();
    Mat<N> sprite = identity<N>(); ///< transform of its sprite

    Boid() = default;

    /// A boid that rests at a place.
    Boid(bool isBubble, const Triple<N>& place) : pos(place), bubble(isBubble) {}

    /// Draws the two random numbers of a new boid.
    explicit Boid(ReferenceRandom& random);

    void translate(const Triple<N>& by) { transform = product(transform, translation(by)); }
    void scale(N s) { transform = product(transform, scaling<N>({s, s, s})); }

    /// Steers and moves by one step.
    /// \param all         the boids nearby, without this one
    /// \param flockmates  those of them that it schools with
    /// \param sensors     the positions of the sensors
    void move(const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates,
              const std::vector<const Triple<N>*>& sensors, ReferenceRandom& random);

    /// The closest within 100000, the earlier one of two; null for none.
    const Boid* closestOf(const std::vector<Boid*>& neighbors) const;

    /// The random push away from a boid nearby; no change of \p avoid when that is not near.
    void pushAway(Triple<N>& avoid, const Boid& other, ReferenceRandom& random) const;

    /// Hands the 360 points of a bubble's outline to \p draw, as x and y in the boid's frame.
    template<typename Draw>
    void outline(Draw draw) const;

    void advanceOutline() { counter = (counter + 1) % 360 + 1; }

private:
    void school(const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates);
    void turnFromWalls();
    void followSensor(const std::vector<const Triple<N>*>& sensors);
    void turnSprite();
};

template<typename N>
void Cell<N>::add(Boid<N>* boid)
{
    if (vacated.empty()) {
        slots.push_back(boid);
        return;
    }
    slots[static_cast<std::size_t>(vacated.front())] = boid;
    vacated.pop_front();
}

template<typename N>
void Cell<N>::remove(int id)
{
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] && slots[i]->id == id) {
            vacated.push_front(static_cast<int>(i));
            slots[i] = nullptr;
        }
    }
}

template<typename N>
Boid<N>::Boid(ReferenceRandom& random)
{
    const int r = random.next();
    const int s = random.next();
    vel = {static_cast<N>(s % 100 - 50) / 10.0f, static_cast<N>(r % 100 - 50) / 10.0f, 0.0f};
    orientation = {0.0f, 1.0f, 0.0f};
}

template<typename N>
void Boid<N>::move(const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates,
                   const std::vector<const Triple<N>*>& sensors, ReferenceRandom& random)
{
    if (!flockmates.empty()) {
        school(all, flockmates);
    }
    turnFromWalls();
    if (const Boid* closest = closestOf(all)) {
        Triple<N> avoid;
        pushAway(avoid, *closest, random);
        if (!(avoid.x == 0.0f && avoid.y == 0.0f && avoid.z == 0.0f)) {
            vel = vel + avoid * 2.2f;
        }
    }
    followSensor(sensors);
    if (bubble) {
        vel = vel + (Triple<N>{0.5f, 1.5f, 0.0f} - pos) * 0.65f;
    }
    turnSprite();
    orientation = vel;
    vel = limited<N>(vel, 7.0f);
    translate(vel);
}

template<typename N>
void Boid<N>::school(const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates)
{
    Triple<N> center;
    Triple<N> average;
    for (const Boid* mate : flockmates) {
        center = center + mate->pos;
        average = average + mate->vel;
    }
    const N count = static_cast<N>(static_cast<int>(flockmates.size()));
    center = center / count;
    flockCenter = center;
    average = average / count;
    Triple<N> towards = center - pos;
    Triple<N> along = average - vel;
    if (distance(center, pos) >= 0.125f) {
        along = along * 2.0f;
    }
    towards = towards * 0.14f;
    along = along * 0.04f;
    // Written down so: both are found, and not used.
    const Boid* volatile closest = closestOf(all);
    const Boid* volatile closestMate = closestOf(flockmates);
    static_cast<void>(closest);
    static_cast<void>(closestMate);
    vel = vel + towards;
    vel = vel + along;
}

/// Looks a hundredth of the velocity ahead, in double precision.
template<typename N>
void Boid<N>::turnFromWalls()
{
    const auto ahead = [](N position, N velocity) {
        return wide(position) + 0.01 * wide(velocity);
    };
    if (0.05 >= ahead(pos.x, vel.x)) {
        vel.x = vel.x + 0.5f;
    }
    if (ahead(pos.x, vel.x) >= 0.95) {
        vel.x = vel.x - 0.5f;
    }
    if (0.05 >= ahead(pos.y, vel.y)) {
        vel.y = vel.y + 0.5f;
    }
    if (!bubble && ahead(pos.y, vel.y) >= 0.95) {
        vel.y = vel.y - 0.5f;
    }
}

template<typename N>
const Boid<N>* Boid<N>::closestOf(const std::vector<Boid*>& neighbors) const
{
    N least = 100000.0f;
    const Boid* closest = nullptr;
    for (const Boid* neighbor : neighbors) {
        const N d = distance(neighbor->pos, pos);
        if (least > d) {
            least = d;
            closest = neighbor;
        }
    }
    return closest;
}

template<typename N>
void Boid<N>::pushAway(Triple<N>& avoid, const Boid& other, ReferenceRandom& random) const
{
    const N d = distance(pos, other.pos);
    const Triple<N> separation = pos - other.pos;
    const N avoidanceRadius = 0.03f;
    if (avoidanceRadius / 2.0f > d) {
        avoid.x = separation.x * static_cast<N>(random.next() % 40 + 20);
        avoid.y = separation.y * static_cast<N>(random.next() % 40 + 20);
        avoid.z = separation.z * static_cast<N>(random.next() % 40 + 20);
    } else if (avoidanceRadius > d) {
        avoid.x = separation.x * static_cast<N>(random.next() % 8 + 4);
        avoid.y = separation.y * static_cast<N>(random.next() % 8 + 4);
        avoid.z = separation.z * static_cast<N>(random.next() % 8 + 4);
    }
}

template<typename N>
void Boid<N>::followSensor(const std::vector<const Triple<N>*>& sensors)
{
    N least = 100000.0f;
    const Triple<N>* closest = nullptr;
    for (const Triple<N>* sensor : sensors) {
        const N d = distance(*sensor, pos);
        if (least > d) {
            least = d;
            closest = sensor;
        }
    }
    if (!closest) {
        return;
    }
    const N d = distance(*closest, pos);
    if (!(0.25f > d)) {
        return;
    }
    const bool thrown = bubble && 0.1 > wide(d);
    vel = vel + (thrown ? (pos - *closest) * 25.0f : (*closest - pos) * 2.0f);
}

template<typename N>
void Boid<N>::turnSprite()
{
    const Triple<N> heading = normalized(orientation);
    const Triple<N> target = normalized(vel);
    const N angle = angleBetween(heading, target);
    const Triple<N> normal = cross(target - heading, target);
    const N degrees = 57.295776f * angle;
    if (degrees >= -180.0f && degrees <= 180.0f) {
        const N turn = normal.z <= 0.0f ? degrees : -57.295776f * angle;
        sprite = product(sprite, rotationAboutZ(turn));
    }
}

template<typename N>
template<typename Draw>
void Boid<N>::outline(Draw draw) const
{
    const N speed = length(vel);
    const N phase = RADIANS * static_cast<N>(counter) * speed / 10.0f;
    const N radius = static_cast<N>(20.0 * std::cos(wide(phase)));
    for (int i = 0; i < 360; ++i) {
        const double around = wide(RADIANS * static_cast<N>(i));
        const Triple<N> point = {static_cast<N>(wide(radius) * std::cos(around)),
                                 static_cast<N>(wide(radius) * std::sin(around)), 0.0f};
        const N scale = dot(vel, point) / (length(vel) * length(point));
        draw(scale * point.x, scale * point.y);
    }
}

} // namespace literal
