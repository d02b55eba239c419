#include "UpdateRun.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "TestBoids.h"
#include "TestWorld.h"

namespace {

Boid* changed = nullptr; ///< what change acts on

/// What other code may do to a boid at any time.
void change()
{
    changed->vel = Vec3(1, 0, 0);
}

/// A boid that does more than to steer.
class Meddler : public Boid {
public:
    Meddler() : Boid(nullptr) {}
    void doupdate() override
    {
        Boid::doupdate();
        change();
    }
};

/// Three boids close together, updated in this order.
class UpdateRunTest : public testing::Test {
protected:
    UpdateRunTest()
    {
        boids.addFarSensor();
        for (int id = 0; id < 3; ++id) {
            const float x = 0.5f + 0.035f * static_cast<float>(id);
            all.push_back(boids.add(BOID_FISH, id, {x, 0.5f, 0}));
        }
        changed = all[0];
        between.onUpdate = [](ProbeNode&) { change(); };
        follow(all[1]);
        runs(); // registers them
    }
    ~UpdateRunTest() override { world->children.clear(); }

    /// Makes \p second the second of the three.
    void follow(Boid* second)
    {
        all[1] = second;
        world->children.clear();
        for (Boid* boid : all) {
            world->attachChild(boid);
        }
    }

    /// Updates the world.
    /// \return how many runs that took
    std::uint64_t runs()
    {
        for (Boid* boid : all) {
            boid->vel = boid->orientation = Vec3();
        }
        const std::uint64_t before = UpdateRun::of(*all[0]);
        graph.updateScene(world);
        return UpdateRun::of(*all[0]) - before - 1;
    }

    /// Whether the last boid has seen the velocity that change gave to the first one.
    bool hasSeen() const { return all[2]->orientation.x > 0.005f; }

    Environment* world = newWorld(1);
    TestBoids boids;
    std::vector<Boid*> all;
    SceneGraph graph;
    Journal journal;
    ProbeNode between{"between", journal}; ///< changes the first one
};

TEST_F(UpdateRunTest, ATraversalUpdatesBoidsInOneRun)
{
    EXPECT_EQ(runs(), 1u);
    EXPECT_FALSE(hasSeen());
}

TEST_F(UpdateRunTest, AnotherNodeInBetweenEndsTheRun)
{
    world->children = {all[0], all[1], &between, all[2]};
    EXPECT_EQ(runs(), 2u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, ABoidWithAnUpdateFunctionEndsTheRun)
{
    all[1]->setUpdateFunc([](Node* node) {
        node->doupdate();
        change();
    });
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, AnUpdateFunctionThatRemovesItselfEndsTheRun)
{
    all[1]->setUpdateFunc([](Node* node) {
        node->setUpdateFunc(nullptr);
        change();
        node->doupdate();
    });
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, ATraversalWithinAnotherIsARunOfItsOwn)
{
    static Boid* inner = nullptr;
    inner = all[1];
    between.onUpdate = [](ProbeNode&) {
        SceneGraph().updateScene(inner);
        change();
    };
    world->children = {all[0], &between, all[2]};
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, ASpriteWithAnUpdateFunctionEndsTheRun)
{
    all[1]->boider->setUpdateFunc([](Node*) { change(); });
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, AFurtherNodeBelowABoidEndsTheRun)
{
    all[1]->attachChild(&between);
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
    all[1]->children.pop_back();
    all[1]->boider->attachChild(&between);
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
    all[1]->children = {&between};
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, ABoidOfAClassThatDoesMoreEndsTheRun)
{
    Meddler meddler;
    meddler.transformmat[12] = 0.535f;
    meddler.transformmat[13] = 0.5f;
    meddler.setId(4);
    meddler.sensorList = &boids.sensors;
    follow(&meddler);
    EXPECT_EQ(runs(), 3u);
    EXPECT_TRUE(hasSeen());
    meddler.cleanup();
}

TEST_F(UpdateRunTest, ADirectCallIsARunOfItsOwn)
{
    runs();
    all[0]->doupdate();
    all[1]->doupdate();
    change();
    all[2]->doupdate();
    EXPECT_TRUE(hasSeen());
}

TEST_F(UpdateRunTest, EachTraversalIsARunOfItsOwn)
{
    runs();
    graph.updateScene(all[0]);
    graph.updateScene(all[1]);
    change();
    graph.updateScene(all[2]);
    EXPECT_TRUE(hasSeen());
}

} // namespace
