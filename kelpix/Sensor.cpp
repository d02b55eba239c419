#include "Sensor.h"

#include "MoCap.h"
#include "SensorRep.h"

#include <cstdlib>

namespace {

constexpr float SPEED_LIMIT = 0.15f;
constexpr float TILT_STEP = 5; // degrees

/// A random start velocity, -0.005 to 0.0049.
float randomVelocity()
{
    return static_cast<float>((std::rand() % 100 - 50) / 10000.0);
}

/// Adds in double precision, then rounds to single: this decides the last bit of positions.
void shift(float& coordinate, double by)
{
    coordinate = static_cast<float>(static_cast<double>(coordinate) + by);
}

/// Limits one component of the velocity. A node that would move faster stays at \p previous.
void limitComponent(float& velocity, float& coordinate, float previous)
{
    if (velocity > SPEED_LIMIT) {
        coordinate = previous;
        velocity = SPEED_LIMIT;
    } else if (velocity < -SPEED_LIMIT) {
        coordinate = previous;
        velocity = -SPEED_LIMIT;
    }
}

} // namespace

Sensor::Sensor() : tilt{-35, 35}, rep(new SensorRep)
{
    pos.set(transformmat[12], transformmat[13], 0);
    const float a = randomVelocity();
    const float b = randomVelocity();
    vel.set(a, b, 0);
    orientation.set(0, 1, 0);
    rep->pos = &pos;
    rep->vel = &vel;
    attachChild(rep);
}

void Sensor::initialize()
{
    initialized = true;
}

int Sensor::cull()
{
    if (!initialized) {
        initialize();
    }
    draw();
    return 1;
}

void Sensor::doupdate()
{
    if (mocap == nullptr) {
        return;
    }
    Vec3* recorded = recordedPosition();
    if (recorded == nullptr) {
        std::exit(1);
    }
    *recorded = *recorded * SCALE;
    const float prevX = transformmat[12];
    const float prevY = transformmat[13];
    place(*recorded);
    limitSpeed(prevX, prevY);
    pos_old = pos;
    tiltBody();
}

/// \return a pointer into the recording: the position of the current step; null beyond its end
Vec3* Sensor::recordedPosition()
{
    const auto& list = mocap->sensorDataList;
    if (sensorId < 0 || static_cast<std::size_t>(sensorId) >= list.size()) {
        return nullptr;
    }
    const auto& series = list[static_cast<std::size_t>(sensorId)]->pos;
    const int step = mocap->step;
    if (step < 0 || static_cast<std::size_t>(step) >= series.size()) {
        return nullptr;
    }
    return series[static_cast<std::size_t>(step)];
}

Vec3 Sensor::placeOf(const Vec3& scaled, int id)
{
    Vec3 at(scaled.x, scaled.y, 0);
    if (id == 0) {
        shift(at.x, 0.05);
    }
    if (id == 2) {
        shift(at.x, -0.05);
    }
    shift(at.y, -0.1);
    shift(at.x, 0.55);
    return at;
}

void Sensor::place(const Vec3& recorded)
{
    pos = placeOf(recorded, sensorId);
    transformmat[12] = pos.x;
    transformmat[13] = pos.y;
    transformmat[14] = pos.z;
}

void Sensor::limitSpeed(float prevX, float prevY)
{
    vel.set(pos.x - pos_old.x, pos.y - pos_old.y, 0);
    limitComponent(vel.x, transformmat[12], prevX);
    limitComponent(vel.y, transformmat[13], prevY);
}

void Sensor::tiltBody()
{
    // Fixed behavior: the tilt of a body is compared with its limit before the step, so it can go
    // one step beyond the limit. Pinned by
    // SensorTest.MovingToTheLeftTiltsUpToOneStepBeyondTheLimit; do not correct.
    if (vel.x < 0 && tilt[1] >= current_tilt) {
        rep->rotate(0, 0, 1, TILT_STEP);
        current_tilt += TILT_STEP;
    } else if (vel.x > 0 && current_tilt >= tilt[0]) {
        rep->rotate(0, 0, 1, -TILT_STEP);
        current_tilt -= TILT_STEP;
    }
}
