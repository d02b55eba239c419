#include "Boid.h"

#include "BucketIndex.h"
#include "Environment.h"
#include "TestBoids.h"
#include "TestWorld.h"

#include <cmath>
#include <limits>

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// Boids in the grid of an environment. They are not among its children, so that nothing but the
/// test updates them.
class BoidUpdateTest : public testing::Test {
protected:
    BoidUpdateTest() { boids.addFarSensor(); }

    Boid* add(BOID_TYPE type, int id, const Vec3& pos, const Vec3& vel = {})
    {
        Boid* const boid = boids.add(type, id, pos, vel);
        boid->setParent(world);
        return boid;
    }

    static void place(Boid* boid, float x, float y)
    {
        boid->transformmat[12] = x;
        boid->transformmat[13] = y;
    }

    Bucket* cell(int column, int row) { return world->bucketIndex.index[10 * row + column]; }

    /// Whether \p boid sees \p other: at its next update the velocity of the flock tells.
    static bool sees(Boid* boid, Boid* other)
    {
        other->vel = Vec3(1, 0, 0);
        boid->vel = Vec3();
        boid->orientation = Vec3();
        boid->doupdate();
        return boid->orientation.x != 0;
    }

    Environment* world = newWorld(1);
    TestBoids boids;
};

TEST_F(BoidUpdateTest, TheFirstUpdateRegistersTheBoidInItsCell)
{
    Boid* const boid = add(BOID_FISH, 7, {0.43f, 0.68f, 0});
    boid->pos = Vec3(9, 9, 9);
    boid->doupdate();
    EXPECT_THAT(boid->pos, IsVec3(0.43f, 0.68f, 0)) << "read from the transform";
    EXPECT_EQ(boid->myBucket, cell(4, 6));
    EXPECT_THAT(cell(4, 6)->boidList, ElementsAre(boid));
    boid->doupdate();
    EXPECT_THAT(cell(4, 6)->boidList, ElementsAre(boid)) << "once";
    EXPECT_TRUE(boid->isAlive());
}

TEST_F(BoidUpdateTest, ABoidThatMovesOnChangesItsCell)
{
    Boid* const boid = add(BOID_FISH, 7, {0.43f, 0.68f, 0});
    boid->doupdate();
    place(boid, 0.53f, 0.68f);
    boid->doupdate();
    EXPECT_EQ(boid->myBucket, cell(5, 6));
    EXPECT_THAT(cell(4, 6)->boidList, ElementsAre(nullptr));
    EXPECT_THAT(cell(5, 6)->boidList, ElementsAre(boid));
    place(boid, 0.53f, 0.71f);
    boid->doupdate();
    EXPECT_EQ(boid->myBucket, cell(5, 7));
    EXPECT_THAT(cell(5, 6)->boidList, ElementsAre(nullptr));
}

TEST_F(BoidUpdateTest, ABubbleThatMovesOnTakesTheOthersInItsCellOutOfSight)
{
    Boid* const fish = add(BOID_FISH, 10, {0.44f, 0.64f, 0});
    Boid* const bubble = add(BOID_BUBBLE, 10, {0.43f, 0.68f, 0});
    Boid* const other = add(BOID_BUBBLE, 10, {0.45f, 0.65f, 0});
    Boid* const watcher = add(BOID_FISH, 3, {0.44f, 0.63f, 0});
    fish->doupdate();
    bubble->doupdate();
    other->doupdate();
    EXPECT_TRUE(sees(watcher, fish));
    place(bubble, 0.53f, 0.68f);
    bubble->doupdate();
    EXPECT_THAT(cell(4, 6)->boidList, ElementsAre(nullptr, nullptr, nullptr, watcher));
    EXPECT_EQ(fish->myBucket, cell(4, 6)) << "it takes itself for registered";
    fish->doupdate();
    EXPECT_THAT(cell(4, 6)->boidList, Not(Contains(fish)));
    EXPECT_FALSE(sees(watcher, fish));
    place(fish, 0.44f, 0.72f);
    fish->doupdate();
    EXPECT_THAT(cell(4, 7)->boidList, ElementsAre(fish)) << "until it changes its cell";
}

TEST_F(BoidUpdateTest, ABoidThatLeavesTheGridDies)
{
    const Vec3 outside[] = {{1.01f, 0.5f, 0},   {-0.01f, 0.5f, 0},       {0.5f, 1.01f, 0},
                            {0.5f, -0.01f, 0},  {INF, 0.5f, 0},          {0.5f, -INF, 0},
                            {0.5f, 1e30f, 0},   {NOT_A_NUMBER, 0.5f, 0}, {0.5f, NOT_A_NUMBER, 0},
                            {0.5f, 1.0f, 0.0f},   // the top edge is outside
                            {1.0f, 0.95f, 0.0f}}; // there is no row after the last
    for (const Vec3& where : outside) {
        Boid* const boid = add(BOID_BUBBLE, 10, {0.43f, 0.68f, 0}, {1, 2, 0});
        Boid* const sameId = add(BOID_FISH, 10, {0.44f, 0.67f, 0});
        sameId->doupdate();
        boid->doupdate();
        place(boid, where.x, where.y);
        const Vec3 velocity = boid->vel;
        boid->doupdate();
        EXPECT_FALSE(boid->isAlive());
        EXPECT_TRUE(boid->outOfBound);
        EXPECT_EQ(boid->myBucket, nullptr);
        EXPECT_THAT(cell(4, 6)->boidList, Not(Contains(boid)));
        EXPECT_THAT(cell(4, 6)->boidList, Not(Contains(sameId))) << "its namesakes go with it";
        EXPECT_THAT(boid->vel, SameTriple(toTriple(velocity)));
        EXPECT_THAT(boid->transformmat[12], SameBits(where.x)) << "it does not move";
        EXPECT_TRUE(sameId->isAlive());
    }
}

TEST_F(BoidUpdateTest, ADeadBoidStaysDeadAndWhereItIs)
{
    Boid* const boid = add(BOID_FISH, 7, {0.43f, 0.68f, 0}, {1, 2, 0});
    boid->doupdate();
    place(boid, 2, 2);
    boid->doupdate();
    place(boid, 0.43f, 0.68f);
    boid->alive = true;
    boid->doupdate();
    EXPECT_FALSE(boid->isAlive()) << "out of bounds for ever";
    EXPECT_EQ(boid->myBucket, nullptr);
    EXPECT_EQ(boid->transformmat[12], 0.43f);
    EXPECT_THAT(cell(4, 6)->boidList, Not(Contains(boid)));
}

TEST_F(BoidUpdateTest, ABoidThatStartsOutsideDiesUnregistered)
{
    Boid* const boid = add(BOID_FISH, 7, {3, 3, 0});
    boid->doupdate();
    EXPECT_FALSE(boid->isAlive());
    EXPECT_TRUE(boid->outOfBound);
    EXPECT_EQ(boid->myBucket, nullptr);
}

TEST_F(BoidUpdateTest, OnTheRightEdgeABoidIsInTheNextRowsFirstCell)
{
    Boid* const boid = add(BOID_FISH, 7, {1, 0.35f, 0});
    boid->doupdate();
    EXPECT_TRUE(boid->isAlive());
    EXPECT_EQ(boid->myBucket, cell(0, 4));
}

TEST_F(BoidUpdateTest, WithoutAParentNothingHappens)
{
    Boid* const boid = boids.add(BOID_FISH, 7, {0.5f, 0.5f, 0}, {1, 2, 0});
    boid->doupdate();
    EXPECT_TRUE(boid->isAlive());
    EXPECT_EQ(boid->transformmat[12], 0.5f);
    EXPECT_EQ(boid->myBucket, nullptr);
}

TEST_F(BoidUpdateTest, WithoutASensorEveryUpdateSaysSo)
{
    Boid* const boid = add(BOID_FISH, 7, {0.5f, 0.5f, 0}, {1, 2, 0});
    boids.sensors.clear();
    testing::internal::CaptureStdout();
    boid->doupdate();
    boid->doupdate();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sensor not found\nsensor not found\n");
    EXPECT_GT(boid->transformmat[12], 0.5f) << "it swims on";
    boid->sensorList = nullptr;
    testing::internal::CaptureStdout();
    boid->doupdate();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sensor not found\n");
}

TEST_F(BoidUpdateTest, ABoidSeesOthersUpToATenthAway)
{
    Boid* const boid = add(BOID_FISH, 1, {0.5f, 0.5f, 0});
    Boid* const other = add(BOID_FISH, 2, {0.5f, 0.5f, 0});
    other->doupdate();
    for (const float away : {0.05f, -0.05f, 0.0999f, -0.0999f}) {
        place(other, 0.5f + away, 0.5f);
        other->vel = Vec3();
        other->doupdate();
        place(boid, 0.5f, 0.5f);
        EXPECT_TRUE(sees(boid, other)) << away;
    }
    for (const float away : {0.1001f, -0.1001f}) {
        place(other, 0.5f + away, 0.5f);
        other->vel = Vec3();
        other->doupdate();
        place(boid, 0.5f, 0.5f);
        EXPECT_FALSE(sees(boid, other)) << away;
    }
}

TEST_F(BoidUpdateTest, TheSearchRadiusItselfIsWithinReach)
{
    Boid* const boid = add(BOID_FISH, 1, {0.1f, 0.5f, 0});
    Boid* const other = add(BOID_FISH, 2, {0, 0.5f, 0});
    other->doupdate();
    EXPECT_TRUE(sees(boid, other));
    place(boid, std::nextafterf(0.1f, 1), 0.5f);
    EXPECT_FALSE(sees(boid, other));
}

TEST_F(BoidUpdateTest, TheCellAfterItsOwnIsSeenOnlyFromTheUpperHalf)
{
    Boid* const boid = add(BOID_FISH, 1, {0.54f, 0.55f, 0});
    Boid* const right = add(BOID_FISH, 2, {0.61f, 0.55f, 0});
    right->doupdate();
    EXPECT_FALSE(sees(boid, right)) << "0.07 away, but not looked at";
    place(boid, 0.56f, 0.55f);
    EXPECT_TRUE(sees(boid, right));

    Boid* const below = add(BOID_FISH, 3, {0.25f, 0.24f, 0});
    Boid* const above = add(BOID_FISH, 4, {0.25f, 0.31f, 0});
    above->doupdate();
    EXPECT_FALSE(sees(below, above));
    place(below, 0.25f, 0.26f);
    EXPECT_TRUE(sees(below, above));
}

TEST_F(BoidUpdateTest, NoMoreThanTheCellBeforeItsOwnIsSeen)
{
    Boid* const boid = add(BOID_FISH, 1, {0.5625f, 0.5625f, 0});
    boid->searchRadius = 1;
    Boid* const twoLeft = add(BOID_FISH, 2, {0.375f, 0.5625f, 0});
    twoLeft->doupdate();
    EXPECT_FALSE(sees(boid, twoLeft));
    Boid* const twoDown = add(BOID_FISH, 3, {0.5625f, 0.375f, 0});
    twoDown->doupdate();
    place(boid, 0.5625f, 0.5625f);
    EXPECT_FALSE(sees(boid, twoDown));
    Boid* const oneBefore = add(BOID_FISH, 4, {0.4375f, 0.4375f, 0});
    oneBefore->doupdate();
    place(boid, 0.5625f, 0.5625f);
    EXPECT_TRUE(sees(boid, oneBefore));
}

TEST_F(BoidUpdateTest, BoidsOfTheSameIdDoNotSeeEachOther)
{
    Boid* const fish = add(BOID_FISH, 10, {0.5f, 0.5f, 0});
    Boid* const bubble = add(BOID_BUBBLE, 10, {0.51f, 0.5f, 0});
    bubble->doupdate();
    EXPECT_FALSE(sees(fish, bubble));
    fish->setId(11);
    EXPECT_TRUE(sees(fish, bubble));
}

TEST_F(BoidUpdateTest, ABoidReadsThePositionOfTheOthersLatestUpdate)
{
    Boid* const boid = add(BOID_FISH, 1, {0.5f, 0.5f, 0});
    Boid* const other = add(BOID_FISH, 2, {0.52f, 0.5f, 0});
    other->doupdate();
    place(other, 0.9f, 0.9f); // it has moved, but not been updated
    EXPECT_TRUE(sees(boid, other));
    EXPECT_THAT(boid->flockCenter, IsVec3(0.52f, 0.5f, 0));
}

TEST_F(BoidUpdateTest, NeighborsComeColumnByColumn)
{
    // Two fish equally close, left and right: the left column's is the closer one.
    Boid* const boid = add(BOID_FISH, 1, {0.5f, 0.55f, 0});
    Boid* const right = add(BOID_FISH, 2, {0.5078125f, 0.55f, 0});
    Boid* const left = add(BOID_FISH, 3, {0.4921875f, 0.55f, 0});
    right->doupdate();
    left->doupdate();
    right->vel = left->vel = Vec3();
    boid->vel = Vec3();
    boid->doupdate();
    EXPECT_GT(boid->orientation.x, 0.2f) << "kicked to the right";
}

TEST_F(BoidUpdateTest, ABoidThatOthersLetDieLeavesItsCellWhenItIsCleanedUp)
{
    Boid* const boid = add(BOID_FISH, 1, {0.5f, 0.5f, 0});
    {
        TestBoids others;
        Boid* const killed = others.add(BOID_FISH, 2, {0.52f, 0.5f, 0});
        killed->sensorList = boid->sensorList;
        killed->setParent(world);
        killed->doupdate();
        EXPECT_TRUE(sees(boid, killed));
        killed->die();
        killed->cleanup(); // as the traversal that deletes it does
        EXPECT_EQ(killed->myBucket, nullptr);
    }
    boid->doupdate(); // and finds nobody where the other one was
    EXPECT_THAT(boid->flockCenter, IsVec3(0.52f, 0.5f, 0)) << "still that of the time before";
}

TEST_F(BoidUpdateTest, CleaningABubbleUpLeavesTheOthersInItsCell)
{
    Boid* const bubble = add(BOID_BUBBLE, 10, {0.52f, 0.55f, 0});
    Boid* const other = add(BOID_BUBBLE, 10, {0.53f, 0.55f, 0});
    bubble->doupdate();
    other->doupdate();
    ASSERT_THAT(cell(5, 5)->boidList, ElementsAre(bubble, other));
    bubble->cleanup();
    EXPECT_THAT(cell(5, 5)->boidList, ElementsAre(nullptr, other));
    EXPECT_EQ(bubble->myBucket, nullptr);
}

} // namespace
