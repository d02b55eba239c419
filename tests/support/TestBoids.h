#pragma once

#include "Boid.h"
#include "ReferenceMatchers.h"
#include "Sensor.h"

#include <memory>
#include <vector>

/// Boids and sensors at chosen places, without an environment around them. Owns them all.
class TestBoids {
public:
    std::vector<Node*> sensors; ///< what every boid follows

    TestBoids() = default;
    TestBoids(const TestBoids&) = delete;
    TestBoids& operator=(const TestBoids&) = delete;
    ~TestBoids();

    /// A boid as an environment makes it, at a place and with a velocity. Calls rand() twice.
    Boid* add(BOID_TYPE type, int id, const Vec3& pos, const Vec3& vel = {});

    /// A sensor at a place. Calls rand() twice.
    Sensor* addSensor(const Vec3& pos);

    /// A sensor beyond everything that a boid could feel.
    void addFarSensor() { addSensor({100, 100, 0}); }

private:
    std::vector<std::unique_ptr<Boid>> boids;
    std::vector<std::unique_ptr<Sensor>> ownedSensors;
};
