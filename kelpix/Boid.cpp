#include "Boid.h"

#include "Boider.h"
#include "BucketIndex.h"
#include "Environment.h"
#include "Frustum.h"
#include "Neighborhood.h"
#include "Prefetch.h"
#include "Sensor.h"
#include "UpdateRun.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

// The constants of the steering. Distances are in world units (the world is 1 wide), velocities in
// units of the boid's own frame, a thousandth of the world. The type of each constant, float or
// double, is part of the arithmetic.

// Neighbors: other boids within this distance.
constexpr float SEARCH_RADIUS = 0.1f;

// Cohesion adds COHESION times the offset to the flock's center; alignment adds ALIGNMENT times the
// difference to its mean velocity, doubled at FAR_FROM_CENTER and beyond.
constexpr float COHESION = 0.14f;
constexpr float ALIGNMENT = 0.04f;
constexpr float FAR_FROM_CENTER = 0.125f;
constexpr float FAR_ALIGNMENT_FACTOR = 2.0f;

// Walls: a boid that would be beyond one after LOOK_AHEAD of its velocity is pushed back.
constexpr double LOOK_AHEAD = 0.01;
constexpr double LOWER_WALL = 0.05; // left and bottom
constexpr double UPPER_WALL = 0.95; // right and top
constexpr float WALL_PUSH = 0.5f;

// Avoidance of the closest neighbor, if it is within the radius; harder within half of it. The kick
// is the separation times random factors times AVOIDANCE.
constexpr float AVOIDANCE_RADIUS = 0.03f;
constexpr float AVOIDANCE = 2.2f;

// The closest sensor pulls within its reach. Bubbles that are very close are thrown away from it.
constexpr float SENSOR_REACH = 0.25f;
constexpr float SENSOR_PULL = 2.0f;
constexpr double BUBBLE_THROW_RADIUS = 0.1;
constexpr float BUBBLE_THROW = 25.0f;

// Bubbles rise to a point above the middle of the top edge.
constexpr float BUBBLE_GOAL_X = 0.5f;
constexpr float BUBBLE_GOAL_Y = 1.5f;
constexpr float BUBBLE_RISE = 0.65f;

// Largest absolute component of the velocity.
constexpr float SPEED_LIMIT = 7.0f;

constexpr float DEGREES_PER_RADIAN = 57.295776f;

/// Random factors of an avoidance, rand() % strength + strength / 2: at least half the strength,
/// less than one and a half of it.
struct AvoidanceStrength {
    int far;  ///< within AVOIDANCE_RADIUS
    int near; ///< within half of it
};

AvoidanceStrength strengthOf(BOID_COLLISION_MODE mode)
{
    switch (mode) {
    case HARDBOUNCE:
        return {16, 120};
    case BOUNCE:
        return {8, 40};
    default:
        return {4, 4};
    }
}

/// Where the boid will be for the wall tests.
double predicted(float position, float velocity)
{
    return static_cast<double>(position) + LOOK_AHEAD * static_cast<double>(velocity);
}

/// Scratch memory of doupdate: the cells around the boid that is being updated. Kept, so that an
/// update allocates nothing.
std::vector<Bucket*> cellsAround;

struct Direction {
    double cosine, sine;
};

/// The 360 directions of a bubble's outline, one a degree.
const std::array<Direction, 360>& outlineDirections()
{
    static const std::array<Direction, 360> directions = [] {
        std::array<Direction, 360> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const float radians = DEG2RAD * static_cast<float>(i);
            table[i] = {std::cos(static_cast<double>(radians)),
                        std::sin(static_cast<double>(radians))};
        }
        return table;
    }();
    return directions;
}

} // namespace

Boid::Boid(Texture* blt) : bubbleTex(blt)
{
    boider = new Boider;
    boider->addTexture(bubbleTex);
    attachChild(boider);
    pos.set(transformmat[12], transformmat[13], transformmat[14]);
    const int r = std::rand();
    const int s = std::rand();
    vel.set(static_cast<float>(s % 100 - 50) / 10.0f, static_cast<float>(r % 100 - 50) / 10.0f, 0);
    orientation.set(0, 1, 0);
    searchRadius = SEARCH_RADIUS;
}

void Boid::initialize()
{
    initialized = true;
}

void Boid::cleanup()
{
    // A boid that leaves the grid has left its cell already. One that other code killed is still
    // in it: without this its cell would keep a pointer to a deleted boid.
    if (myBucket != nullptr) {
        myBucket->forget(this);
        myBucket = nullptr;
    }
    delete boider;
    boider = nullptr;
}

int Boid::cull()
{
    if (!initialized) {
        initialize();
    }
    float planes[6][4];
    Frustum::get_frustum(planes);
    const float origin[3] = {0, 0, 0};
    if (Frustum::test_point(planes, origin) == -1) {
        return -1;
    }
    draw();
    return 1;
}

void Boid::draw()
{
    if (type != BOID_BUBBLE) {
        return;
    }
    const float speed = vel.length();
    const float phase = DEG2RAD * static_cast<float>(counter) * speed / 10.0f;
    const float radius = static_cast<float>(20.0 * std::cos(static_cast<double>(phase)));

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(0.8f, 0.8f, 1.0f, 0.5f);
    // A circle, each point scaled by the cosine of its angle to the velocity: a figure of eight
    // along the velocity.
    glBegin(GL_LINE_LOOP);
    for (const Direction& direction : outlineDirections()) {
        const float x = static_cast<float>(static_cast<double>(radius) * direction.cosine);
        const float y = static_cast<float>(static_cast<double>(radius) * direction.sine);
        const Vec3 point(x, y, 0);
        const float scale = Vec3::DotProduct(vel, point) / (speed * point.length());
        glVertex2f(scale * x, scale * y);
    }
    glEnd();
    glDisable(GL_BLEND);

    // Fixed behavior: the phase of a bubble's outline advances by 2 for each frame and wraps from
    // 360 to 2. Pinned by BoidDrawTest.EveryDrawAdvancesTheOutlineByTwo; do not correct.
    counter = (counter + 1) % 360 + 1;
}

void Boid::doupdate()
{
    auto* environment = static_cast<Environment*>(getParent());
    if (environment == nullptr) {
        return;
    }
    prefetch(boider, sizeof(Boider));
    const std::uint64_t run = UpdateRun::of(*this);
    BucketIndex* grid = environment->getBucketIndex();
    pos.set(transformmat[12], transformmat[13], transformmat[14]);
    const float x = pos.x * 10;
    const float y = pos.y * 10;
    enterGrid(grid->query(x, y));
    if (myBucket == nullptr) {
        die();
        return;
    }

    // The upper bounds of the rectangle are exclusive: along each axis it finds the boid's own
    // cell, the cell before it, and the cell after it if the boid is in the upper half of its own.
    cellsAround.clear();
    grid->query(&cellsAround, x - 1.0f, y - 1.0f, x + 1.5f, y + 1.5f);
    const Neighborhood neighbors = Neighborhood::inCells(cellsAround, *this, AVOIDANCE_RADIUS, run);
    // All neighbors are flockmates, so one search finds both the sums and the closest boid to
    // avoid. Others need not be avoided.
    steer(neighbors, neighbors.closest);
    myBucket->repack(*this);
}

void Boid::enterGrid(Bucket* bucket)
{
    switch (checkBucket(myBucket, bucket)) {
    case -1:
        myBucket->remove(this);
        myBucket = bucket;
        bucket->add(this);
        break;
    case 2:
        myBucket = bucket;
        bucket->add(this);
        break;
    case 3:
        if (myBucket != nullptr) {
            myBucket->remove(this);
        }
        myBucket = nullptr;
        outOfBound = true;
        break;
    default:
        break;
    }
}

int Boid::checkBucket(Bucket* a, Bucket* b)
{
    if (outOfBound) {
        return 4;
    }
    if (b == nullptr) {
        return 3;
    }
    if (a == nullptr) {
        return 2;
    }
    if (a->x() != b->x()) {
        return -1;
    }
    return a->y() == b->y() ? 1 : -1;
}

void Boid::move(std::vector<Boid*>* all, std::vector<Boid*>* flockmates)
{
    steer(Neighborhood::ofList(*flockmates), getClosest(all));
}

void Boid::steer(const Neighborhood& flockmates, Boid* closest)
{
    if (flockmates.count > 0) {
        flock(flockmates);
    }
    avoidWalls();
    if (closest != nullptr) {
        bounceOff(closest);
    }
    moveToClosestSensor();
    if (type == BOID_BUBBLE) {
        vel = vel + (Vec3(BUBBLE_GOAL_X, BUBBLE_GOAL_Y, 0) - pos) * BUBBLE_RISE;
    }
    turnSprite();
    orientation = vel;
    vel.limit(SPEED_LIMIT);
    translate(vel.x, vel.y, vel.z);
}

void Boid::flock(const Neighborhood& flockmates)
{
    const auto numboids = static_cast<float>(flockmates.count);
    const Vec3 center = flockmates.pos / numboids;
    updateFlockingCenter(center);
    const Vec3 avgvelocity = flockmates.vel / numboids;

    Vec3 center_bias = center - pos;
    Vec3 avgvel_bias = avgvelocity - vel;
    if (Vec3::EuclDistance(center, pos) >= FAR_FROM_CENTER) {
        avgvel_bias = avgvel_bias * FAR_ALIGNMENT_FACTOR;
    }
    center_bias = center_bias * COHESION;
    avgvel_bias = avgvel_bias * ALIGNMENT;
    vel = vel + center_bias;
    vel = vel + avgvel_bias;
}

void Boid::avoidWalls()
{
    if (LOWER_WALL >= predicted(pos.x, vel.x)) {
        vel.x += WALL_PUSH;
    }
    if (predicted(pos.x, vel.x) >= UPPER_WALL) {
        vel.x -= WALL_PUSH;
    }
    if (LOWER_WALL >= predicted(pos.y, vel.y)) {
        vel.y += WALL_PUSH;
    }
    // There is no wall above a bubble: it leaves through the top.
    if (type != BOID_BUBBLE && predicted(pos.y, vel.y) >= UPPER_WALL) {
        vel.y -= WALL_PUSH;
    }
}

void Boid::doBoidCollision(std::vector<Boid*>* all)
{
    if (Boid* closest = getClosest(all)) {
        bounceOff(closest);
    }
}

void Boid::bounceOff(Boid* closest)
{
    Vec3 avoid;
    getAvoidVector(avoid, closest, BOUNCE);
    if (avoid.isnonzero()) {
        vel = vel + avoid * AVOIDANCE;
    }
}

Boid* Boid::getClosest(std::vector<Boid*>* neighbors)
{
    Closest nearest;
    Boid* closest = nullptr;
    for (Boid* neighbor : *neighbors) {
        if (nearest.isNearer(Vec3::SquaredDistance(neighbor->pos, pos))) {
            closest = neighbor;
        }
    }
    return closest;
}

void Boid::getAvoidVector(Vec3& avoid, Boid* boid, BOID_COLLISION_MODE mode)
{
    const float distance = Vec3::EuclDistance(pos, boid->pos);
    const Vec3 separation = pos - boid->pos;
    int strength = 0;
    if (AVOIDANCE_RADIUS / 2 > distance) {
        strength = strengthOf(mode).near;
    } else if (AVOIDANCE_RADIUS > distance) {
        strength = strengthOf(mode).far;
    } else {
        return;
    }
    const auto factor = [strength, least = strength / 2] {
        return static_cast<float>(std::rand() % strength + least);
    };
    avoid.x = separation.x * factor();
    avoid.y = separation.y * factor();
    avoid.z = separation.z * factor();
}

Node* Boid::getClosestSensor()
{
    float distance = 0;
    return findSensor(distance);
}

Sensor* Boid::findSensor(float& distance)
{
    if (sensorList == nullptr) {
        return nullptr;
    }
    Closest nearest;
    Sensor* closest = nullptr;
    for (Node* node : *sensorList) {
        auto* sensor = static_cast<Sensor*>(node);
        if (nearest.isNearer(Vec3::SquaredDistance(sensor->pos, pos))) {
            closest = sensor;
        }
    }
    distance = nearest.distance();
    return closest;
}

void Boid::moveToClosestSensor()
{
    float distance = 0;
    const Sensor* closest = findSensor(distance);
    if (closest == nullptr) {
        std::puts("sensor not found");
        return;
    }
    if (!(SENSOR_REACH > distance)) {
        return;
    }
    if (type == BOID_BUBBLE && BUBBLE_THROW_RADIUS > static_cast<double>(distance)) {
        vel = vel + (pos - closest->pos) * BUBBLE_THROW;
    } else {
        vel = vel + (closest->pos - pos) * SENSOR_PULL;
    }
}

void Boid::turnSprite()
{
    Vec3 heading = orientation;
    heading.normalize();
    Vec3 target = vel;
    target.normalize();
    const float degrees = DEGREES_PER_RADIAN * Vec3::AngleBetween(heading, target);
    // NaN fails this test too: a boid at rest has no heading, and its sprite is not turned.
    if (boider == nullptr || !(-180 <= degrees && degrees <= 180)) {
        return;
    }
    const Vec3 normal = Vec3::CrossProduct(target - heading, target);
    boider->rotate(0, 0, 1, normal.z <= 0 ? degrees : -degrees);
}
