#include "Boid.h"

#include "Boider.h"
#include "BucketIndex.h"
#include "Environment.h"
#include "Frustum.h"
#include "Neighborhood.h"
#include "Sensor.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

/// Where the wall tests look: a hundredth of the velocity ahead.
double predicted(float position, float velocity)
{
    return static_cast<double>(position) + 0.01 * static_cast<double>(velocity);
}

/// The cells around the boid that is updated; kept for its memory.
std::vector<Bucket*> cells;

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
    searchRadius = 0.1f;
}

void Boid::initialize()
{
    initialized = true;
}

void Boid::cleanup()
{
    // Only one that other code let die is still in its cell: outside the grid it has left it.
    if (myBucket) {
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
    // Two lobes along the velocity: the circle scaled by the cosine of the angle to the heading.
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

    // Two steps a frame: the animation's speed depends on it.
    counter = (counter + 1) % 360 + 1;
}

void Boid::doupdate()
{
    auto* environment = static_cast<Environment*>(getParent());
    if (!environment) {
        return;
    }
    BucketIndex* grid = environment->getBucketIndex();
    pos.set(transformmat[12], transformmat[13], transformmat[14]);
    const float x = pos.x * 10;
    const float y = pos.y * 10;
    enterGrid(grid->query(x, y));
    if (!myBucket) {
        die();
        return;
    }

    // Its own cell and the one before it along each axis, and the one after it only when it is in
    // the upper half of its cell: the rectangle's upper bound is exclusive.
    cells.clear();
    grid->query(&cells, x - 1.0f, y - 1.0f, x + 1.5f, y + 1.5f);
    const Neighborhood neighbors = Neighborhood::inCells(cells, *this);
    // It swims with the same boids that it avoids.
    steer(neighbors, neighbors.closest);
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
        if (myBucket) {
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
    if (!b) {
        return 3;
    }
    if (!a) {
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
    if (closest) {
        bounceOff(closest);
    }
    moveToClosestSensor();
    if (type == BOID_BUBBLE) {
        vel = vel + (Vec3(0.5f, 1.5f, 0) - pos) * 0.65f;
    }
    turnSprite();
    orientation = vel;
    vel.limit(7.0f);
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
    if (Vec3::EuclDistance(center, pos) >= 0.125f) {
        avgvel_bias = avgvel_bias * 2.0f;
    }
    center_bias = center_bias * 0.14f;
    avgvel_bias = avgvel_bias * 0.04f;
    vel = vel + center_bias;
    vel = vel + avgvel_bias;
}

void Boid::avoidWalls()
{
    if (0.05 >= predicted(pos.x, vel.x)) {
        vel.x += 0.5f;
    }
    if (predicted(pos.x, vel.x) >= 0.95) {
        vel.x -= 0.5f;
    }
    if (0.05 >= predicted(pos.y, vel.y)) {
        vel.y += 0.5f;
    }
    // No wall above a bubble: it leaves through the top.
    if (type != BOID_BUBBLE && predicted(pos.y, vel.y) >= 0.95) {
        vel.y -= 0.5f;
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
        vel = vel + avoid * 2.2f;
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
    const int initial = mode == HARDBOUNCE ? 16 : mode == BOUNCE ? 8 : 4;
    const int secondary = mode == HARDBOUNCE ? 120 : mode == BOUNCE ? 40 : 4;
    const float cruiseDistance = 0.03f;
    int strength = 0;
    if (cruiseDistance / 2 > distance) {
        strength = secondary;
    } else if (cruiseDistance > distance) {
        strength = initial;
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
    if (!sensorList) {
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
    if (!closest) {
        std::puts("sensor not found");
        return;
    }
    if (!(0.25f > distance)) {
        return;
    }
    if (type == BOID_BUBBLE && 0.1 > static_cast<double>(distance)) {
        vel = vel + (pos - closest->pos) * 25.0f;
    } else {
        vel = vel + (closest->pos - pos) * 2.0f;
    }
}

void Boid::turnSprite()
{
    Vec3 heading = orientation;
    heading.normalize();
    Vec3 target = vel;
    target.normalize();
    const float degrees = 57.295776f * Vec3::AngleBetween(heading, target);
    // False for NaN too: a boid at rest has no angle and keeps its sprite as it is.
    if (!boider || !(-180 <= degrees && degrees <= 180)) {
        return;
    }
    const Vec3 normal = Vec3::CrossProduct(target - heading, target);
    boider->rotate(0, 0, 1, normal.z <= 0 ? degrees : -degrees);
}
