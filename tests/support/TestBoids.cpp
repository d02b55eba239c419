#include "TestBoids.h"

#include "SensorRep.h"

TestBoids::~TestBoids()
{
    for (const auto& boid : boids) {
        boid->cleanup();
    }
    for (const auto& sensor : ownedSensors) {
        delete sensor->rep;
    }
}

Boid* TestBoids::add(BOID_TYPE type, int id, const Vec3& pos, const Vec3& vel)
{
    boids.push_back(std::make_unique<Boid>(nullptr));
    Boid* const boid = boids.back().get();
    boid->translate(pos.x, pos.y, pos.z);
    boid->scale(0.001f, 0.001f, 0.001f);
    boid->setId(id);
    boid->type = type;
    boid->pos = pos;
    boid->vel = vel;
    boid->sensorList = &sensors;
    return boid;
}

Sensor* TestBoids::addSensor(const Vec3& pos)
{
    ownedSensors.push_back(std::make_unique<Sensor>());
    ownedSensors.back()->pos = pos;
    sensors.push_back(ownedSensors.back().get());
    return ownedSensors.back().get();
}
