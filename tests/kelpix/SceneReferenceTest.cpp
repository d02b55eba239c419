#include "Environment.h"

#include "Boid.h"
#include "Boider.h"
#include "Camera.h"
#include "GLTest.h"
#include "PivotNode.h"
#include "ReferenceMatchers.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "TestWorld.h"

#include <cmath>
#include <cstdlib>

/// The whole scene against the plain code of tests/reference, to the bit, over runs that contain
/// everything that can happen in it.

namespace {

constexpr int STEPS = 400;

/// Three figures that move on curves through the world, sometimes faster than they may.
reference::Recording swimmingFigures()
{
    reference::Recording recording;
    for (std::size_t figure = 0; figure < 3; ++figure) {
        for (int step = 0; step < STEPS; ++step) {
            const double phase = 0.05 * step + 2 * static_cast<double>(figure);
            const double jump = step % 50 == 49 ? 0.2 : 0;
            const double x = 0.5 + 0.35 * std::sin(phase) + jump;
            const double y = 0.5 + 0.4 * std::sin(1.7 * phase);
            recording[figure].push_back(
                {Single((x - 0.55) / 0.45), Single((y + 0.1) / 0.45), Single(0.1 * phase)});
        }
    }
    return recording;
}

/// A scene as the program builds it, and the same scene in plain code.
class Twins {
public:
    explicit Twins(unsigned seed)
        : recording(swimmingFigures()), plain(seed, recording), world(newWorld(seed, recording))
    {
        skipTextures(world);
        world->scale(1.2f, 1.2f, 1.0f);
        world->translate(-0.5f, -0.5f, 0.0f);
        plain.world = reference::product(plain.world, reference::scaling(1.2f, 1.2f, 1.0f));
        plain.world = reference::product(plain.world, reference::translation(-0.5f, -0.5f, 0.0f));
        root.attachChild(&pivot);
        pivot.attachChild(world);
        graph.setRootNode(&root);
        graph.setPivotNode(&pivot);
    }
    ~Twins() { world->setParent(nullptr); }

    void update(int step)
    {
        recordingOf(world)->step = step;
        graph.update();
        plain.update(step);
    }

    void draw()
    {
        graph.draw();
        plain.draw();
    }

    void pan(float x, float y)
    {
        root.translate(x, y, 0);
        plain.root = reference::product(plain.root, reference::translation(x, y, 0.0f));
    }

    void zoom(float factor)
    {
        root.scale(factor, factor, factor);
        plain.root = reference::product(plain.root, reference::scaling(factor, factor, factor));
    }

    void turn(float degrees)
    {
        pivot.rotate(0, 0, 1, degrees);
        plain.pivot = reference::product(plain.pivot, reference::rotationAboutZ(degrees));
    }

    /// Compares everything there is; the first difference fails the test.
    void compare();

    reference::Recording recording;
    reference::Scene plain;
    Environment* world;
    RootNode root;
    PivotNode pivot;
    SceneGraph graph;

private:
    void compareBoid(Boid* boid, const reference::Boid& expected);
    void compareSensor(Sensor* sensor, const reference::Sensor& expected);
    void compareTentacles(const SensorRep& rep, const reference::Tentacles& expected);
    void compareCells();
};

void Twins::compare()
{
    ASSERT_EQ(emitt, plain.sinceEmission);
    ASSERT_EQ(world->children.size(), plain.children.size());
    std::size_t i = 0;
    for (Node* child : world->children) {
        SCOPED_TRACE(testing::Message() << "child " << i);
        const reference::Scene::Child& expected = plain.children[i++];
        ASSERT_EQ(child->getParent(), world);
        if (const auto* boid = std::get_if<std::unique_ptr<reference::Boid>>(&expected)) {
            ASSERT_EQ(child->getType(), RTTI_PARTICLE);
            compareBoid(static_cast<Boid*>(child), **boid);
        } else {
            ASSERT_EQ(child->getType(), RTTI_USER1);
            compareSensor(static_cast<Sensor*>(child),
                          *std::get<std::unique_ptr<reference::Sensor>>(expected));
        }
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
    compareCells();
    ASSERT_EQ(std::rand(), plain.random.next());
}

void Twins::compareBoid(Boid* boid, const reference::Boid& expected)
{
    ASSERT_EQ(boid->getId(), expected.id);
    ASSERT_EQ(boid->type, expected.bubble ? BOID_BUBBLE : BOID_FISH);
    ASSERT_EQ(boid->isAlive(), expected.alive);
    ASSERT_EQ(boid->outOfBound, expected.outOfBound);
    ASSERT_EQ(boid->counter, expected.counter);
    ASSERT_THAT(boid->pos, SameTriple(expected.pos));
    ASSERT_THAT(boid->vel, SameTriple(expected.vel));
    ASSERT_THAT(boid->orientation, SameTriple(expected.orientation));
    ASSERT_THAT(boid->flockCenter, SameTriple(expected.flockCenter));
    ASSERT_THAT(boid->transformmat, SameMatrix(expected.transform));
    ASSERT_THAT(boid->boider->transformmat, SameMatrix(expected.sprite));
    ASSERT_EQ(boid->myBucket == nullptr, expected.cell == nullptr);
    if (expected.cell != nullptr) {
        const auto cell = expected.cell - plain.cells.data();
        ASSERT_EQ(boid->myBucket, world->bucketIndex.index[cell]);
    }
}

void Twins::compareSensor(Sensor* sensor, const reference::Sensor& expected)
{
    ASSERT_EQ(sensor->sensorId, expected.id);
    ASSERT_THAT(sensor->pos, SameTriple(expected.pos));
    ASSERT_THAT(sensor->pos_old, SameTriple(expected.oldPos));
    ASSERT_THAT(sensor->vel, SameTriple(expected.vel));
    ASSERT_THAT(sensor->orientation, SameTriple(expected.orientation));
    ASSERT_TRUE(same(sensor->current_tilt, expected.currentTilt));
    ASSERT_THAT(sensor->transformmat, SameMatrix(expected.transform));
    ASSERT_THAT(sensor->rep->transformmat, SameMatrix(expected.rep.transform));
    compareTentacles(*sensor->rep, expected.rep);
}

void Twins::compareTentacles(const SensorRep& rep, const reference::Tentacles& expected)
{
    ASSERT_EQ(rep.initialized, expected.initialized);
    ASSERT_EQ(rep.counter, expected.counter);
    ASSERT_TRUE(same(rep.pre_angle, expected.preAngle));
    ASSERT_TRUE(same(rep.degree, expected.degree)) << rep.degree << " " << expected.degree.value;
    ASSERT_EQ(rep.tentacle.size(), expected.points.size());
    auto point = rep.tentacle.begin();
    for (const auto& p : expected.points) {
        ASSERT_TRUE(same((*point)->x, p->x) && same((*point)->y, p->y));
        ++point;
    }
    ASSERT_TRUE(same(rep.cos_curve, expected.cosines));
    ASSERT_TRUE(same(rep.sin_curve, expected.sines));
}

void Twins::compareCells()
{
    for (std::size_t c = 0; c < plain.cells.size(); ++c) {
        const reference::Cell& expected = plain.cells[c];
        Bucket* const cell = world->bucketIndex.index[c];
        ASSERT_EQ(cell->boidList.size(), expected.slots.size()) << "cell " << c;
        for (std::size_t slot = 0; slot < expected.slots.size(); ++slot) {
            const auto* boid = static_cast<Boid*>(cell->boidList[slot]);
            ASSERT_EQ(boid ? boid->getId() : -1,
                      expected.slots[slot] ? expected.slots[slot]->id : -1);
        }
        ASSERT_EQ(cell->nullboids.stack, expected.vacated) << "cell " << c;
    }
}

/// How often each thing happened in a run.
struct Tally {
    int emitted = 0;
    int reaped = 0;
    int culled = 0;
    int hidden = 0; ///< frames without the world
    float leastTilt = 0;
    float mostTilt = 0;
    std::size_t longestTentacle = 0;

    void add(const reference::Scene& scene)
    {
        emitted += scene.emittedBubbles;
        reaped += scene.reapedBoids;
        culled += scene.culledBoids;
        hidden += scene.visibleNodes == 2 ? 1 : 0;
        for (const reference::Scene::Child& child : scene.children) {
            if (const auto* sensor = std::get_if<std::unique_ptr<reference::Sensor>>(&child)) {
                leastTilt = std::min(leastTilt, (*sensor)->currentTilt.value);
                mostTilt = std::max(mostTilt, (*sensor)->currentTilt.value);
                longestTentacle = std::max(longestTentacle, (*sensor)->rep.points.size());
            }
        }
    }
};

class SceneReferenceTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        Camera camera;
        camera.setProjType(1);
        camera.reshape(0, 0, WIDTH, HEIGHT);
        glViewport(0, 0, 16, 16); // nobody looks at the picture
    }
};

TEST_F(SceneReferenceTest, AFreshSceneIsTheSame)
{
    for (unsigned seed = 1; seed <= 3; ++seed) {
        Twins twins(seed);
        ASSERT_NO_FATAL_FAILURE(twins.compare()) << "seed " << seed;
    }
}

TEST_F(SceneReferenceTest, UpdatesWithoutDrawingAreTheSame)
{
    for (unsigned seed = 11; seed <= 12; ++seed) {
        Twins twins(seed);
        for (int tick = 0; tick < 100; ++tick) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", tick " << tick);
            twins.update(tick / 3);
            ASSERT_NO_FATAL_FAILURE(twins.compare());
        }
    }
}

TEST_F(SceneReferenceTest, UpdatesAndFramesInTurnAreTheSame)
{
    Twins twins(2024);
    Tally tally;
    for (int tick = 0; tick < STEPS; ++tick) {
        SCOPED_TRACE(testing::Message() << "tick " << tick);
        // The clock steps on mostly, and sometimes the same step is met again and again.
        twins.update(tick % 40 < 30 ? tick : tick - tick % 10);
        if (tick % 10 == 0) {
            ASSERT_NO_FATAL_FAILURE(twins.compare());
        }
        twins.draw();
        ASSERT_EQ(twins.graph.node_count, twins.plain.visibleNodes);
        ASSERT_NO_FATAL_FAILURE(twins.compare());
        tally.add(twins.plain);
    }
    EXPECT_EQ(tally.emitted, 3 * ((STEPS - 1) / 15));
    EXPECT_GT(tally.reaped, 5);
    EXPECT_GT(tally.culled, 50);
    EXPECT_EQ(tally.hidden, 0);
    EXPECT_EQ(tally.leastTilt, -40);
    EXPECT_EQ(tally.mostTilt, 40);
    EXPECT_EQ(tally.longestTentacle, 24u);
}

TEST_F(SceneReferenceTest, AMovedAndTurnedViewIsTheSame)
{
    Twins twins(7);
    Tally tally;
    for (int tick = 0; tick < 300; ++tick) {
        SCOPED_TRACE(testing::Message() << "tick " << tick);
        if (tick % 2 == 0) {
            twins.turn(3);
        }
        if (tick % 60 == 20) {
            twins.zoom(1.25f);
            twins.pan(0.1f, -0.05f);
        }
        if (tick % 60 == 40) {
            twins.pan(5, 0);
        }
        if (tick % 60 == 50) {
            twins.pan(-5, 0);
            twins.zoom(0.8f);
        }
        // Frames and updates come at rates of their own.
        if (tick % 5 != 3) {
            twins.update(tick);
        }
        if (tick % 7 != 4) {
            twins.draw();
            ASSERT_EQ(twins.graph.node_count, twins.plain.visibleNodes);
            tally.add(twins.plain);
        }
        ASSERT_NO_FATAL_FAILURE(twins.compare());
    }
    EXPECT_GT(tally.emitted, 30);
    EXPECT_GT(tally.reaped, 5);
    EXPECT_GT(tally.culled, 500);
    EXPECT_GT(tally.hidden, 30);
}

} // namespace
