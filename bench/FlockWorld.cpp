#include "FlockWorld.h"

#include "Job.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "MoCap.h"
#include "SceneGraph.h"
#include "Sensor.h"

#include <FL/Fl.H>
#include <algorithm>
#include <cstdlib>
#include <map>

namespace flock {
namespace {

using Twin = literal::Boid<float>;
using TwinSensor = literal::Sensor<float>;

constexpr unsigned SEED = 1;

Mat matrixOf(Node* node)
{
    Mat m;
    std::copy_n(node->glTransform(), 16, m.begin());
    return m;
}

Vec3& recordedOf(const ::Sensor& sensor)
{
    const auto id = static_cast<std::size_t>(sensor.sensorId);
    return *sensor.mocap->sensorDataList[id]->pos[static_cast<std::size_t>(sensor.mocap->step)];
}

bool isBoid(const Node* node)
{
    return node->getType() == RTTI_PARTICLE;
}

/// A start coordinate like the environment's own.
float randomCoordinate()
{
    return static_cast<float>(0.1 + (std::rand() % 90) / 100.0);
}

void addFish(Environment& environment, int id)
{
    auto* fish = new ::Boid(environment.fishTex);
    const float y = randomCoordinate();
    const float x = randomCoordinate();
    fish->translate(x, y, 0);
    fish->scale(0.001f, 0.001f, 0.001f);
    fish->setId(id);
    environment.attachChild(fish);
    fish->sensorList = &environment.sensorList;
}

literal::Triple<float> tripleOf(const Vec3& v)
{
    return {v.x, v.y, v.z};
}

std::unique_ptr<Twin> literalCopyOf(::Boid& boid, World& world)
{
    auto twin = std::make_unique<Twin>();
    twin->transform = matrixOf(&boid);
    twin->sprite = matrixOf(boid.boider);
    twin->pos = tripleOf(boid.pos);
    twin->vel = tripleOf(boid.vel);
    twin->orientation = tripleOf(boid.orientation);
    twin->flockCenter = tripleOf(boid.flockCenter);
    twin->bubble = boid.type == BOID_BUBBLE;
    twin->id = boid.boidId;
    twin->searchRadius = boid.searchRadius;
    twin->alive = boid.alive;
    twin->outOfBound = boid.outOfBound;
    if (boid.myBucket != nullptr) {
        const int cell = 10 * boid.myBucket->y() + boid.myBucket->x();
        twin->cell = &world.cells.at(static_cast<std::size_t>(cell));
    }
    return twin;
}

std::unique_ptr<TwinSensor> literalCopyOf(::Sensor& sensor)
{
    auto twin = std::make_unique<TwinSensor>();
    twin->id = sensor.sensorId;
    twin->transform = matrixOf(&sensor);
    twin->pos = tripleOf(sensor.pos);
    twin->oldPos = tripleOf(sensor.pos_old);
    twin->vel = tripleOf(sensor.vel);
    twin->currentTilt = sensor.current_tilt;
    twin->rep.transform = matrixOf(sensor.rep);
    twin->rep.degree = sensor.rep->degree;
    for (const Vertex* point : sensor.rep->tentacle) {
        twin->rep.points.push_back(std::make_unique<literal::Triple<float>>(
            literal::Triple<float>{point->x, point->y, 0}));
    }
    twin->rep.cosines = sensor.rep->cos_curve;
    twin->rep.sines = sensor.rep->sin_curve;
    return twin;
}

/// Hashes what two worlds have in common, in whatever types they hold it.
class Hash {
public:
    std::uint64_t value = bench::hashOf(nullptr, 0);

    template<typename... Triples>
    void add(const Triples&... triples)
    {
        (..., addFloats({triples.x, triples.y, triples.z}));
    }
    void addFloats(std::initializer_list<float> numbers)
    {
        value = bench::hashOf(numbers.begin(), numbers.size() * sizeof(float), value);
    }
    void addMatrix(const Mat& m) { value = bench::hashOf(m.data(), sizeof m, value); }
};

} // namespace

Environment* newEnvironment(int fish, int ticks)
{
    std::srand(SEED);
    auto* environment = new Environment(nullptr);
    MoCap* recording = static_cast<::Sensor*>(environment->sensorList.front())->mocap;
    Fl::remove_timeout(dataTimer, recording);
    for (int id = 100; id < fish; ++id) {
        addFish(*environment, id);
    }
    for (int tick = 0; tick < ticks; ++tick) {
        recording->step = tick * 90 / 40;
        update(*environment);
    }
    recording->step = ticks * 90 / 40;
    return environment;
}

void update(Environment& environment)
{
    static SceneGraph graph;
    graph.updateScene(&environment);
}

Snapshot::Snapshot(Environment& environment)
{
    for (Node* node : environment.children) {
        if (isBoid(node)) {
            auto& boid = *static_cast<::Boid*>(node);
            fish.push_back({&boid, matrixOf(&boid), matrixOf(boid.boider), boid.pos, boid.vel,
                            boid.orientation, boid.flockCenter, boid.myBucket, boid.outOfBound,
                            boid.alive, boid.slot});
            continue;
        }
        auto& sensor = *static_cast<::Sensor*>(node);
        Figure& figure = figures.emplace_back(Figure{&sensor,
                                                     matrixOf(&sensor),
                                                     matrixOf(sensor.rep),
                                                     sensor.pos,
                                                     sensor.pos_old,
                                                     sensor.vel,
                                                     recordedOf(sensor),
                                                     sensor.current_tilt,
                                                     sensor.rep->degree,
                                                     {},
                                                     sensor.rep->cos_curve,
                                                     sensor.rep->sin_curve});
        for (const Vertex* point : sensor.rep->tentacle) {
            figure.tentacle.push_back(*point);
        }
    }
    const BucketIndex& grid = environment.bucketIndex;
    std::for_each(grid.index, grid.index + 100, [this](Bucket* bucket) {
        cells.push_back({bucket, bucket->boidList, bucket->nullboids.stack});
    });
}

void Snapshot::restore() const
{
    for (const Fish& one : fish) {
        ::Boid& boid = *one.boid;
        std::copy(one.transform.begin(), one.transform.end(), boid.transformmat);
        std::copy(one.sprite.begin(), one.sprite.end(), boid.boider->transformmat);
        boid.pos = one.pos;
        boid.vel = one.vel;
        boid.orientation = one.orientation;
        boid.flockCenter = one.flockCenter;
        boid.myBucket = one.bucket;
        boid.outOfBound = one.outOfBound;
        boid.alive = one.alive;
        boid.slot = one.slot;
    }
    for (const Figure& one : figures) {
        ::Sensor& sensor = *one.sensor;
        std::copy(one.transform.begin(), one.transform.end(), sensor.transformmat);
        std::copy(one.body.begin(), one.body.end(), sensor.rep->transformmat);
        sensor.pos = one.pos;
        sensor.pos_old = one.old;
        sensor.vel = one.vel;
        recordedOf(sensor) = one.recorded;
        sensor.current_tilt = one.tilt;
        sensor.rep->degree = one.degree;
        auto point = one.tentacle.begin();
        for (Vertex* vertex : sensor.rep->tentacle) {
            *vertex = *point++;
        }
        sensor.rep->cos_curve = one.cosines;
        sensor.rep->sin_curve = one.sines;
    }
    for (const Cell& one : cells) {
        one.bucket->boidList = one.boids;
        one.bucket->nullboids.stack = one.vacated;
    }
    std::srand(SEED);
}

std::unique_ptr<World> literalCopyOf(Environment& environment)
{
    auto world = std::make_unique<World>(SEED, literal::Recording<float>{});
    std::map<const Node*, Twin*> twins;
    for (Node* node : environment.children) {
        if (isBoid(node)) {
            auto twin = literalCopyOf(*static_cast<::Boid*>(node), *world);
            twins[node] = twin.get();
            world->add(std::move(twin));
        } else {
            auto& sensor = *static_cast<::Sensor*>(node);
            const auto id = static_cast<std::size_t>(sensor.sensorId);
            world->recording[id] = {tripleOf(recordedOf(sensor))};
            world->add(literalCopyOf(sensor));
        }
    }
    for (std::size_t i = 0; i < world->cells.size(); ++i) {
        const Bucket& bucket = *environment.bucketIndex.index[i];
        world->cells[i].vacated = bucket.nullboids.stack;
        for (const Node* node : bucket.boidList) {
            world->cells[i].slots.push_back(node != nullptr ? twins.at(node) : nullptr);
        }
    }
    return world;
}

std::uint64_t hashOf(Environment& environment)
{
    Hash hash;
    for (Node* node : environment.children) {
        if (isBoid(node)) {
            const auto& boid = *static_cast<::Boid*>(node);
            hash.addMatrix(matrixOf(node));
            hash.addMatrix(matrixOf(boid.boider));
            hash.add(boid.pos, boid.vel, boid.orientation, boid.flockCenter);
            continue;
        }
        const auto& sensor = *static_cast<::Sensor*>(node);
        hash.addMatrix(matrixOf(node));
        hash.addMatrix(matrixOf(sensor.rep));
        hash.add(sensor.pos, sensor.pos_old, sensor.vel);
        hash.addFloats({sensor.current_tilt, sensor.rep->degree});
        for (const Vertex* point : sensor.rep->tentacle) {
            hash.addFloats({point->x, point->y});
        }
    }
    hash.addFloats({static_cast<float>(std::rand())});
    return hash.value;
}

std::uint64_t hashOf(World& world)
{
    Hash hash;
    for (const World::Child& child : world.children) {
        if (const auto* boid = std::get_if<std::unique_ptr<Twin>>(&child)) {
            hash.addMatrix((*boid)->transform);
            hash.addMatrix((*boid)->sprite);
            hash.add((*boid)->pos, (*boid)->vel, (*boid)->orientation, (*boid)->flockCenter);
            continue;
        }
        const auto& sensor = **std::get_if<std::unique_ptr<TwinSensor>>(&child);
        hash.addMatrix(sensor.transform);
        hash.addMatrix(sensor.rep.transform);
        hash.add(sensor.pos, sensor.oldPos, sensor.vel);
        hash.addFloats({sensor.currentTilt, sensor.rep.degree});
        for (const auto& point : sensor.rep.points) {
            hash.addFloats({point->x, point->y});
        }
    }
    hash.addFloats({static_cast<float>(world.random.next())});
    return hash.value;
}

} // namespace flock
