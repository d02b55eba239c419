#pragma once

#include "BucketIndex.h"
#include "LiteralWorld.h"
#include "SensorRep.h"
#include "Vector.h"

#include <cstdint>
#include <list>
#include <memory>
#include <vector>

class Boid;
class Environment;
class Sensor;

/// The scene's world with a chosen number of fish, at a tick to which it can be brought back.
namespace flock {

using Mat = literal::Mat<float>;
using World = literal::World<float>;

/// An environment with three figures and \p fish fish (100 at least), after so many ticks from a
/// fixed seed. Lives until the program ends. Plays the recording below the working directory.
Environment* newEnvironment(int fish, int ticks);

/// Updates everything in an environment, as the scene graph does.
void update(Environment& environment);

/// What an update changes, kept at the time of construction.
class Snapshot {
public:
    explicit Snapshot(Environment& environment);

    /// Brings everything back to that time, and the random numbers to a fixed seed.
    void restore() const;

private:
    struct Fish {
        ::Boid* boid;
        Mat transform, sprite;
        Vec3 pos, vel, orientation, flockCenter;
        Bucket* bucket;
        bool outOfBound, alive;
        std::size_t slot;
    };
    struct Figure {
        ::Sensor* sensor;
        Mat transform, body;
        Vec3 pos, old, vel, recorded;
        float tilt, degree;
        std::vector<Vertex> tentacle;
        std::list<float> cosines, sines;
    };
    struct Cell {
        Bucket* bucket;
        std::vector<Node*> boids;
        std::list<int> vacated;
    };
    std::vector<Fish> fish;
    std::vector<Figure> figures;
    std::vector<Cell> cells;
};

/// The literal world in the state of an environment, with the random numbers of a fixed seed to
/// come. Its recording is the current step alone, step 0.
std::unique_ptr<World> literalCopyOf(Environment& environment);

/// Hashes the state of all boids and figures, and the next random number.
std::uint64_t hashOf(Environment& environment);
std::uint64_t hashOf(World& world);

} // namespace flock
