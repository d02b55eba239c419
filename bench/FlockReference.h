#pragma once

#include <array>
#include <list>
#include <memory>
#include <vector>

class Environment;

/// One update of the scene's world as it is described, step by step and in plain code: what the
/// project's own update is measured against.
namespace flock {

struct Vec {
    float x = 0, y = 0, z = 0;
};

/// Column after column.
using Mat = std::array<float, 16>;

struct Boid;

/// A cell of the grid.
struct Cell {
    int column = 0, row = 0;
    std::vector<Boid*> boids;
    std::list<int> vacated;

    void add(Boid* boid);
    void remove(int id);
};

struct World;

struct Boid {
    Mat transform = {};
    Mat sprite = {};
    Vec pos, vel, orientation, flockCenter;
    bool bubble = false;
    int id = 0;
    float searchRadius = 0;
    bool alive = true;
    bool outOfBound = false;
    Cell* cell = nullptr;

    void update(World& world);

private:
    void move(World& world, const std::vector<Boid*>& all, const std::vector<Boid*>& flockmates);
    const Boid* closestOf(const std::vector<Boid*>& neighbours) const;
    void pushAway(Vec& avoid, const Boid& other) const;
    void followSensor(World& world);
};

struct Sensor {
    Mat transform = {};
    Mat body = {}; ///< the representation's transform
    Vec pos, old, vel;
    Vec* recorded = nullptr;
    int id = 0;
    float tilt = 0;
    float degree = 0;
    std::list<Vec*> tentacle;
    std::list<float> cosines, sines;

    Sensor() = default;
    Sensor(const Sensor&) = delete;
    Sensor& operator=(const Sensor&) = delete;
    ~Sensor();

    void update();
    void updateBody();
};

/// The fish, bubbles and sensors of an environment, in the order of its children.
struct World {
    struct Child {
        std::unique_ptr<Boid> boid; ///< or
        std::unique_ptr<Sensor> sensor;
    };
    std::vector<Child> children;
    std::vector<Sensor*> sensors;
    std::array<Cell, 100> cells; ///< row after row
    std::array<Vec, 3> recorded; ///< the sensors' places at the current step

    /// Copies the state of an environment.
    explicit World(Environment& environment);

    /// One tick.
    void update();

    Cell* cellAt(float x, float y);
    void cellsIn(std::vector<Cell*>& list, float x0, float y0, float x1, float y1);
};

} // namespace flock
