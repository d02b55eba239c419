#include "FlockReference.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "MoCap.h"
#include "Sensor.h"
#include "SensorRep.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

namespace flock {
namespace {

constexpr int CELLS = 10; // in a row, and in a column

double wide(float value)
{
    return static_cast<double>(value);
}

float narrow(double value)
{
    return static_cast<float>(value);
}

Vec operator+(const Vec& a, const Vec& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vec operator-(const Vec& a, const Vec& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vec operator*(const Vec& a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

Vec operator/(const Vec& a, float divisor)
{
    return {a.x / divisor, a.y / divisor, a.z / divisor};
}

float dot(const Vec& a, const Vec& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec cross(const Vec& a, const Vec& b)
{
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

float length(const Vec& a)
{
    return narrow(std::sqrt(wide(a.x * a.x + a.y * a.y + a.z * a.z)));
}

Vec normalized(const Vec& a)
{
    const float len = length(a);
    return len == 0 ? a : a / len;
}

float distance(const Vec& a, const Vec& b)
{
    const Vec d = a - b;
    return narrow(std::sqrt(wide(d.x) * wide(d.x) + wide(d.y) * wide(d.y) + wide(d.z) * wide(d.z)));
}

float angleBetween(const Vec& a, const Vec& b)
{
    return narrow(std::acos(wide(dot(a, b) / (length(a) * length(b)))));
}

Vec limited(const Vec& a, float bound)
{
    float m = std::fabs(a.x) > std::fabs(a.y) ? std::fabs(a.x) : std::fabs(a.y);
    m = m > std::fabs(a.z) ? m : std::fabs(a.z);
    return bound >= m ? a : a * (bound / m);
}

Mat identity()
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

Mat product(const Mat& a, const Mat& b)
{
    Mat out;
    for (std::size_t j = 0; j < 4; ++j) {
        for (std::size_t i = 0; i < 4; ++i) {
            out[4 * j + i] = a[i] * b[4 * j] + a[4 + i] * b[4 * j + 1] + a[8 + i] * b[4 * j + 2] +
                             a[12 + i] * b[4 * j + 3];
        }
    }
    return out;
}

Mat translation(const Vec& by)
{
    Mat m = identity();
    m[12] = by.x;
    m[13] = by.y;
    m[14] = by.z;
    return m;
}

Mat rotation(float x, float y, float z, float angle)
{
    const float len = narrow(std::sqrt(wide(x * x + y * y + z * z)));
    const float radians = angle * 3.1415927f / 180.0f;
    const float s = narrow(std::sin(wide(radians)));
    const float c = narrow(std::cos(wide(radians)));
    const float ux = x / len;
    const float uy = y / len;
    const float uz = z / len;
    Mat m = identity();
    m[0] = ux * ux + (1 - ux * ux) * c;
    m[1] = ux * uy * (1 - c) + uz * s;
    m[2] = ux * uz * (1 - c) - uy * s;
    m[4] = uy * ux * (1 - c) - uz * s;
    m[5] = uy * uy + (1 - uy * uy) * c;
    m[6] = uy * uz * (1 - c) + ux * s;
    m[8] = uz * ux * (1 - c) + uy * s;
    m[9] = uz * uy * (1 - c) - ux * s;
    m[10] = uz * uz + (1 - uz * uz) * c;
    return m;
}

Vec copy(const Vec3& v)
{
    return {v.x, v.y, v.z};
}

Mat copy(Node& node)
{
    Mat m;
    std::copy_n(node.glTransform(), 16, m.begin());
    return m;
}

int cut(float value)
{
    return static_cast<int>(value);
}

double predicted(float position, float velocity)
{
    return wide(position) + 0.01 * wide(velocity);
}

} // namespace

void Cell::add(Boid* boid)
{
    if (vacated.empty()) {
        boids.push_back(boid);
        return;
    }
    boids[static_cast<std::size_t>(vacated.front())] = boid;
    vacated.pop_front();
}

void Cell::remove(int id)
{
    for (std::size_t i = 0; i < boids.size(); ++i) {
        if (boids[i] && boids[i]->id == id) {
            vacated.push_front(static_cast<int>(i));
            boids[i] = nullptr;
        }
    }
}

Cell* World::cellAt(float x, float y)
{
    if (!(x >= 0 && CELLS >= x && y >= 0 && CELLS >= y)) {
        return nullptr;
    }
    const int i = CELLS * cut(y) + cut(x);
    return static_cast<std::size_t>(i) < cells.size() ? &cells[static_cast<std::size_t>(i)]
                                                      : nullptr;
}

void World::cellsIn(std::vector<Cell*>& list, float x0, float y0, float x1, float y1)
{
    const int c0 = std::max(cut(x0), 0);
    const int r0 = std::max(cut(y0), 0);
    const int c1 = std::min(cut(x1), CELLS);
    const int r1 = std::min(cut(y1), CELLS);
    for (int i = c0; i < c1; ++i) {
        for (int j = r0; j < r1; ++j) {
            const int cell = CELLS * j + i;
            list.push_back(&cells[static_cast<std::size_t>(cell)]);
        }
    }
}

void Boid::update(World& world)
{
    pos = {transform[12], transform[13], transform[14]};
    Cell* const now = world.cellAt(pos.x * 10, pos.y * 10);
    if (!outOfBound && !now) {
        if (cell) {
            cell->remove(id);
        }
        cell = nullptr;
        outOfBound = true;
    } else if (!outOfBound && !cell) {
        cell = now;
        now->add(this);
    } else if (!outOfBound && (cell->column != now->column || cell->row != now->row)) {
        cell->remove(id);
        cell = now;
        now->add(this);
    }
    if (!cell) {
        alive = false;
        return;
    }

    std::vector<Cell*> list;
    world.cellsIn(list, pos.x * 10 - 1.0f, pos.y * 10 - 1.0f, pos.x * 10 + 1.5f, pos.y * 10 + 1.5f);
    std::vector<Boid*> allneighbors;
    std::vector<Boid*> flockmates;
    for (Cell* each : list) {
        for (Boid* other : each->boids) {
            if (other && other->id != id && searchRadius >= distance(other->pos, pos)) {
                allneighbors.push_back(other);
                flockmates.push_back(other);
            }
        }
    }
    move(world, allneighbors, flockmates);
}

void Boid::move(World& world, const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates)
{
    if (!flockmates.empty()) {
        Vec center;
        Vec avgvelocity;
        for (const Boid* mate : flockmates) {
            center = center + mate->pos;
            avgvelocity = avgvelocity + mate->vel;
        }
        const auto numboids = static_cast<float>(flockmates.size());
        center = center / numboids;
        flockCenter = center;
        avgvelocity = avgvelocity / numboids;
        Vec center_bias = center - pos;
        Vec avgvel_bias = avgvelocity - vel;
        if (distance(center, pos) >= 0.125f) {
            avgvel_bias = avgvel_bias * 2.0f;
        }
        center_bias = center_bias * 0.14f;
        avgvel_bias = avgvel_bias * 0.04f;
        // Both are found, and not used.
        const Boid* volatile closest = closestOf(all);
        const Boid* volatile closestFlockMate = closestOf(flockmates);
        static_cast<void>(closest);
        static_cast<void>(closestFlockMate);
        vel = vel + center_bias;
        vel = vel + avgvel_bias;
    }

    if (0.05 >= predicted(pos.x, vel.x)) {
        vel.x += 0.5f;
    }
    if (predicted(pos.x, vel.x) >= 0.95) {
        vel.x -= 0.5f;
    }
    if (0.05 >= predicted(pos.y, vel.y)) {
        vel.y += 0.5f;
    }
    if (!bubble && predicted(pos.y, vel.y) >= 0.95) {
        vel.y -= 0.5f;
    }

    if (const Boid* closest = closestOf(all)) {
        Vec avoid;
        pushAway(avoid, *closest);
        if (avoid.x != 0 || avoid.y != 0 || avoid.z != 0) {
            vel = vel + avoid * 2.2f;
        }
    }
    followSensor(world);
    if (bubble) {
        vel = vel + (Vec{0.5f, 1.5f, 0} - pos) * 0.65f;
    }

    const Vec heading = normalized(orientation);
    const Vec target = normalized(vel);
    const float angle2rotate = angleBetween(heading, target);
    const Vec normal = cross(target - heading, target);
    const float d = 57.295776f * angle2rotate;
    if (-180 <= d && d <= 180) {
        if (normal.z <= 0) {
            sprite = product(sprite, rotation(0, 0, 1, d));
        } else {
            sprite = product(sprite, rotation(0, 0, 1, -57.295776f * angle2rotate));
        }
    }
    orientation = vel;
    vel = limited(vel, 7.0f);
    transform = product(transform, translation(vel));
}

const Boid* Boid::closestOf(const std::vector<Boid*>& neighbours) const
{
    float least = 100000.0f;
    const Boid* closest = nullptr;
    for (const Boid* neighbour : neighbours) {
        const float d = distance(neighbour->pos, pos);
        if (least > d) {
            least = d;
            closest = neighbour;
        }
    }
    return closest;
}

void Boid::pushAway(Vec& avoid, const Boid& other) const
{
    const float d = distance(pos, other.pos);
    const Vec separation = pos - other.pos;
    const float cruiseDistance = 0.03f;
    if (cruiseDistance / 2 > d) {
        avoid.x = separation.x * static_cast<float>(std::rand() % 40 + 20);
        avoid.y = separation.y * static_cast<float>(std::rand() % 40 + 20);
        avoid.z = separation.z * static_cast<float>(std::rand() % 40 + 20);
    } else if (cruiseDistance > d) {
        avoid.x = separation.x * static_cast<float>(std::rand() % 8 + 4);
        avoid.y = separation.y * static_cast<float>(std::rand() % 8 + 4);
        avoid.z = separation.z * static_cast<float>(std::rand() % 8 + 4);
    }
}

void Boid::followSensor(World& world)
{
    float least = 100000.0f;
    const Sensor* closest = nullptr;
    for (const Sensor* sensor : world.sensors) {
        const float d = distance(sensor->pos, pos);
        if (least > d) {
            least = d;
            closest = sensor;
        }
    }
    if (!closest) {
        return;
    }
    const float d = distance(closest->pos, pos);
    if (!(0.25f > d)) {
        return;
    }
    const bool thrown = bubble && 0.1 > wide(d);
    vel = vel + (thrown ? (pos - closest->pos) * 25.0f : (closest->pos - pos) * 2.0f);
}

Sensor::~Sensor()
{
    for (const Vec* point : tentacle) {
        delete point;
    }
}

void Sensor::update()
{
    *recorded = *recorded * 0.45f;
    const float prevX = transform[12];
    const float prevY = transform[13];
    transform[12] = recorded->x;
    transform[13] = recorded->y;
    transform[14] = 0;
    if (id == 0) {
        transform[12] = narrow(wide(transform[12]) + 0.05);
    }
    if (id == 2) {
        transform[12] = narrow(wide(transform[12]) - 0.05);
    }
    transform[13] = narrow(wide(transform[13]) - 0.1);
    transform[12] = narrow(wide(transform[12]) + 0.55);
    pos = {transform[12], transform[13], transform[14]};
    vel = {pos.x - old.x, pos.y - old.y, 0};
    if (vel.x > 0.15f) {
        transform[12] = prevX;
        vel.x = 0.15f;
    } else if (vel.x < -0.15f) {
        transform[12] = prevX;
        vel.x = -0.15f;
    }
    if (vel.y > 0.15f) {
        transform[13] = prevY;
        vel.y = 0.15f;
    } else if (vel.y < -0.15f) {
        transform[13] = prevY;
        vel.y = -0.15f;
    }
    old = pos;
    if (vel.x < 0 && 35 >= tilt) {
        body = product(body, rotation(0, 0, 1, 5));
        tilt += 5;
    } else if (vel.x > 0 && tilt >= -35) {
        body = product(body, rotation(0, 0, 1, -5));
        tilt -= 5;
    }
}

void Sensor::updateBody()
{
    const double rad = wide(DEG2RAD * degree);
    if (tentacle.size() == 24) {
        delete tentacle.back();
        tentacle.pop_back();
        cosines.pop_back();
        sines.pop_back();
    }
    tentacle.push_front(new Vec{narrow(-0.2 * wide(vel.x)), narrow(-0.05 * wide(vel.y)), 0});
    cosines.push_front(narrow(0.025 * std::cos(rad)));
    sines.push_front(narrow(0.025 * std::sin(rad)));
    if (vel.y > 0) {
        degree =
            narrow(2000 * std::sqrt(wide(vel.y) * wide(vel.y) + 0.5 * (wide(vel.x) * wide(vel.x))) +
                   wide(degree));
    } else {
        degree += 7.5f;
    }
    if (degree >= 360) {
        degree = 0;
    }
}

World::World(Environment& environment)
{
    std::map<const Node*, Boid*> twins;
    for (Node* node : *environment.getChildList()) {
        Child& child = children.emplace_back();
        if (node->getType() == RTTI_PARTICLE) {
            const auto& own = *static_cast<::Boid*>(node);
            child.boid = std::make_unique<Boid>();
            Boid& boid = *child.boid;
            boid.transform = copy(*node);
            boid.sprite = copy(*own.boider);
            boid.pos = copy(own.pos);
            boid.vel = copy(own.vel);
            boid.orientation = copy(own.orientation);
            boid.flockCenter = copy(own.flockCenter);
            boid.bubble = own.type == BOID_BUBBLE;
            boid.id = own.boidId;
            boid.searchRadius = own.searchRadius;
            boid.alive = own.alive;
            boid.outOfBound = own.outOfBound;
            if (own.myBucket) {
                const int cell = CELLS * own.myBucket->y() + own.myBucket->x();
                boid.cell = &cells.at(static_cast<std::size_t>(cell));
            }
            twins[node] = &boid;
            continue;
        }
        const auto& own = *static_cast<::Sensor*>(node);
        child.sensor = std::make_unique<Sensor>();
        Sensor& sensor = *child.sensor;
        sensors.push_back(&sensor);
        sensor.transform = copy(*node);
        sensor.body = copy(*own.rep);
        sensor.pos = copy(own.pos);
        sensor.old = copy(own.pos_old);
        sensor.vel = copy(own.vel);
        sensor.id = own.sensorId;
        sensor.tilt = own.current_tilt;
        const auto id = static_cast<std::size_t>(sensor.id);
        const auto step = static_cast<std::size_t>(own.mocap->step);
        recorded.at(id) = copy(*own.mocap->sensorDataList[id]->pos[step]);
        sensor.recorded = &recorded.at(id);
        sensor.degree = own.rep->degree;
        for (const Vertex* point : own.rep->tentacle) {
            sensor.tentacle.push_back(new Vec{point->x, point->y, 0});
        }
        sensor.cosines = own.rep->cos_curve;
        sensor.sines = own.rep->sin_curve;
    }

    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Bucket& own = *environment.getBucketIndex()->index[i];
        Cell& cell = cells.at(i);
        cell.column = own.x();
        cell.row = own.y();
        cell.vacated = own.nullboids.stack;
        for (const Node* node : own.boidList) {
            cell.boids.push_back(node ? twins.at(node) : nullptr);
        }
    }
}

void World::update()
{
    for (Child& child : children) {
        if (child.boid) {
            child.boid->update(*this);
        } else {
            child.sensor->update();
            child.sensor->updateBody();
        }
    }
}

} // namespace flock
