#include "StateHash.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "MoCap.h"
#include "SceneGraph.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Window.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

/// FNV-1a over words of 32 bits, with the bits mixed at the end.
class Hash {
public:
    void word(std::uint32_t bits) { state = (state ^ bits) * 0x100000001b3; }
    void integer(int value) { word(static_cast<std::uint32_t>(value)); }
    void size(std::size_t value) { word(static_cast<std::uint32_t>(value)); }

    /// All NaNs count as one: which of them an operation gives depends on the compiler.
    void number(float value)
    {
        word(std::isnan(value) ? 0x7fc00000 : std::bit_cast<std::uint32_t>(value));
    }

    void numbers(const float* values, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            number(values[i]);
        }
    }

    void vector(const Vec3& v)
    {
        number(v.x);
        number(v.y);
        number(v.z);
    }

    void transform(const Node& node) { numbers(node.transformmat, 16); }

    std::uint64_t value() const
    {
        std::uint64_t mixed = (state ^ (state >> 33)) * 0xff51afd7ed558ccd;
        mixed = (mixed ^ (mixed >> 33)) * 0xc4ceb9fe1a85ec53;
        return mixed ^ (mixed >> 33);
    }

private:
    std::uint64_t state = 0xcbf29ce484222325;
};

/// The generator's state, read without drawing from it: initstate hands out the state in use and
/// brings its bookkeeping word up to date; setstate puts it back as it was.
std::uint64_t hashOfRandom()
{
    alignas(std::uint32_t) char other[8];
    char* const inUse = initstate(1, other, sizeof other);
    std::uint32_t words[32];
    std::memcpy(words, inUse, sizeof words);
    setstate(inUse);
    Hash hash;
    for (const std::uint32_t word : words) {
        hash.word(word);
    }
    return hash.value();
}

void add(Hash& hash, const BucketIndex& grid)
{
    const int columns = static_cast<int>(grid.extents[2]);
    const int rows = static_cast<int>(grid.extents[3]);
    for (int i = 0; i < columns * rows; ++i) {
        const Bucket& cell = *grid.index[i];
        hash.size(cell.boidList.size());
        for (const Node* node : cell.boidList) {
            hash.integer(node != nullptr ? static_cast<const Boid*>(node)->getId() : -1);
        }
        hash.size(cell.nullboids.stack.size());
        for (const int slot : cell.nullboids.stack) {
            hash.integer(slot);
        }
    }
}

void addBoid(Hash& boids, Hash& bodies, const Boid& boid)
{
    boids.integer(boid.boidId);
    boids.integer(boid.type);
    boids.integer(boid.alive ? 1 : 0);
    boids.integer(boid.outOfBound ? 1 : 0);
    boids.integer(boid.myBucket != nullptr ? boid.myBucket->x() : -1);
    boids.integer(boid.myBucket != nullptr ? boid.myBucket->y() : -1);
    boids.number(boid.searchRadius);
    boids.vector(boid.pos);
    boids.vector(boid.vel);
    boids.vector(boid.orientation);
    boids.vector(boid.flockCenter);
    boids.transform(boid);

    bodies.integer(boid.counter);
    bodies.transform(*boid.boider);
}

void addRecord(Hash& hash, const MoCap& recording, int sensorId)
{
    const auto number = static_cast<std::size_t>(sensorId);
    if (number >= recording.sensorDataList.size()) {
        return;
    }
    const std::vector<Vec3*>& series = recording.sensorDataList[number]->pos;
    const auto step = static_cast<std::size_t>(recording.step);
    if (step < series.size()) {
        hash.vector(*series[step]);
    }
}

void addSensor(Hash& figures, Hash& bodies, const Sensor& sensor)
{
    figures.integer(sensor.sensorId);
    figures.integer(sensor.mocap->step);
    figures.integer(sensor.mocap->numSteps);
    addRecord(figures, *sensor.mocap, sensor.sensorId);
    figures.vector(sensor.pos);
    figures.vector(sensor.pos_old);
    figures.vector(sensor.vel);
    figures.number(sensor.current_tilt);
    figures.transform(sensor);

    const SensorRep& rep = *sensor.rep;
    bodies.transform(rep);
    bodies.integer(rep.counter);
    bodies.number(rep.pre_angle);
    bodies.number(rep.degree);
    bodies.size(rep.tentacle.size());
    for (const Vertex* point : rep.tentacle) {
        bodies.number(point->x);
        bodies.number(point->y);
    }
    for (const float cosine : rep.cos_curve) {
        bodies.number(cosine);
    }
    for (const float sine : rep.sin_curve) {
        bodies.number(sine);
    }
}

std::uint64_t hashOfView(const Environment& water, const Window& window)
{
    Hash view;
    const SceneGraph& graph = *window.render.sg;
    view.transform(*graph.rootNode);
    view.transform(*graph.pivotNode);
    view.transform(water);
    view.number(window.pscale);
    view.numbers(window.offset, 2);
    view.integer(window.MOUSE[0]);
    view.integer(window.MOUSE[1]);
    return view.value();
}

} // namespace

std::array<StateHash::Part, 5> StateHash::parts() const
{
    return {{{"random", random},
             {"boids", boids},
             {"figures", figures},
             {"bodies", bodies},
             {"view", view}}};
}

std::uint64_t StateHash::whole() const
{
    Hash all;
    for (const Part& part : parts()) {
        all.word(static_cast<std::uint32_t>(part.value));
        all.word(static_cast<std::uint32_t>(part.value >> 32));
    }
    return all.value();
}

StateHash hashOf(const Environment& water, const Window& window)
{
    Hash boids;
    Hash figures;
    Hash bodies;
    boids.integer(emitt);
    boids.size(water.children.size());
    for (const Node* child : water.children) {
        if (child->getType() == RTTI_PARTICLE) {
            addBoid(boids, bodies, *static_cast<const Boid*>(child));
        } else {
            addSensor(figures, bodies, *static_cast<const Sensor*>(child));
        }
    }
    add(boids, water.bucketIndex);
    return {hashOfRandom(), boids.value(), figures.value(), bodies.value(),
            hashOfView(water, window)};
}
