#include "Boid.h"

#include "Boider.h"
#include "BucketIndex.h"
#include "ReferenceMatchers.h"
#include "TestBoids.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>

using testing::IsNull;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// One unit in the last place below and above.
float below(float v)
{
    return std::nextafterf(v, -INF);
}

class BoidTest : public testing::Test {
protected:
    TestBoids boids;
};

TEST_F(BoidTest, ConstructorDrawsTheVelocityFromTwoNumbersYFirst)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        std::srand(seed);
        Boid boid(nullptr);
        ReferenceRandom random(seed);
        const int r = random.next();
        const int s = random.next();
        EXPECT_THAT(boid.vel.x, SameBits(static_cast<float>(s % 100 - 50) / 10.0f));
        EXPECT_THAT(boid.vel.y, SameBits(static_cast<float>(r % 100 - 50) / 10.0f));
        EXPECT_THAT(boid.vel.z, SameBits(0.0f));
        EXPECT_EQ(std::rand(), random.next()) << "two numbers, no more";
        boid.cleanup();
    }
}

TEST_F(BoidTest, AFreshBoidRestsUnregisteredWithASpriteAsItsChild)
{
    auto* const texture = reinterpret_cast<Texture*>(&boids); // only the pointer counts
    Boid boid(texture);
    EXPECT_THAT(boid.pos, IsVec3(0, 0, 0));
    EXPECT_THAT(boid.orientation, IsVec3(0, 1, 0));
    EXPECT_THAT(boid.flockCenter, IsVec3(0, 0, 0));
    EXPECT_FALSE(boid.initialized);
    EXPECT_THAT(boid.searchRadius, SameBits(0.1f));
    EXPECT_THAT(boid.myBucket, IsNull());
    EXPECT_EQ(boid.mode, NOMODE);
    EXPECT_FALSE(boid.outOfBound);
    EXPECT_EQ(boid.counter, 0);
    EXPECT_EQ(boid.bubbleTex, texture);
    EXPECT_THAT(boid.children, testing::ElementsAre(boid.boider));
    EXPECT_EQ(boid.boider->getParent(), &boid);
    EXPECT_EQ(boid.boider->tex, texture);
    EXPECT_THAT(boid.transformmat, SameMatrix(reference::identity()));
    EXPECT_TRUE(boid.isAlive());
    boid.cleanup();
}

TEST_F(BoidTest, ABoidWithoutTextureRestsWithoutASprite)
{
    std::srand(1);
    Boid boid;
    EXPECT_EQ(std::rand(), ReferenceRandom(1).next()) << "it draws no random number";
    EXPECT_THAT(boid.pos, IsVec3(0, 0, 0));
    EXPECT_THAT(boid.vel, IsVec3(0, 0, 0));
    EXPECT_THAT(boid.orientation, IsVec3(0, 0, 0));
    EXPECT_THAT(boid.flockCenter, IsVec3(0, 0, 0));
    EXPECT_THAT(boid.boider, IsNull());
    EXPECT_THAT(boid.children, testing::IsEmpty());
}

TEST_F(BoidTest, TheEnumerationsKeepTheirValues)
{
    EXPECT_EQ(static_cast<int>(BOID_FISH), 0);
    EXPECT_EQ(static_cast<int>(BOID_BUBBLE), 1);
    EXPECT_EQ(static_cast<int>(NOMODE), 0);
    EXPECT_EQ(static_cast<int>(MOVE_TO_SENSOR), 1);
    EXPECT_EQ(static_cast<int>(HARDBOUNCE), 0);
    EXPECT_EQ(static_cast<int>(BOUNCE), 1);
    EXPECT_EQ(static_cast<int>(SOFT), 2);
}

TEST_F(BoidTest, WhatABoidHasNoUseForIsEmpty)
{
    Boid* const boid = boids.add(BOID_FISH, 1, {});
    Node* const node = boid;
    EXPECT_EQ(node->getType(), RTTI_PARTICLE);
    node->drawBBox();
    node->userEvent(nullptr);
    node->addTexture(nullptr);
    node->computeBBox();
    node->addGeometry(nullptr);
    node->print();
    EXPECT_THAT(node->getTexture(), IsNull());
    EXPECT_THAT(node->getBBox(), IsNull());
    EXPECT_THAT(node->getGeometry(), IsNull());
    boid->initialize();
    EXPECT_TRUE(boid->initialized);
}

TEST_F(BoidTest, CheckBucketTellsWhereTheBoidIs)
{
    Boid* const boid = boids.add(BOID_FISH, 1, {});
    Bucket a(3, 4);
    Bucket otherColumn(5, 4);
    Bucket otherRow(3, 5);
    Bucket samePlace(3, 4);
    EXPECT_EQ(boid->checkBucket(nullptr, nullptr), 3);
    EXPECT_EQ(boid->checkBucket(&a, nullptr), 3);
    EXPECT_EQ(boid->checkBucket(nullptr, &a), 2);
    EXPECT_EQ(boid->checkBucket(&a, &otherColumn), -1);
    EXPECT_EQ(boid->checkBucket(&a, &otherRow), -1);
    EXPECT_EQ(boid->checkBucket(&a, &a), 1);
    EXPECT_EQ(boid->checkBucket(&a, &samePlace), 1) << "the place counts, not the object";
    boid->outOfBound = true;
    EXPECT_EQ(boid->checkBucket(&a, &a), 4);
    EXPECT_EQ(boid->checkBucket(nullptr, nullptr), 4);
    EXPECT_EQ(boid->checkBucket(nullptr, &a), 4);
}

TEST_F(BoidTest, TheClosestNeighborIsTheEarlierOfTwoEquallyClose)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0});
    Boid* const far = boids.add(BOID_FISH, 1, {0.75f, 0.5f, 0});
    Boid* const left = boids.add(BOID_FISH, 2, {0.375f, 0.5f, 0});
    Boid* const right = boids.add(BOID_FISH, 3, {0.625f, 0.5f, 0});
    std::vector<Boid*> neighbors = {far, left, right};
    EXPECT_EQ(boid->getClosest(&neighbors), left);
    neighbors = {far, right, left};
    EXPECT_EQ(boid->getClosest(&neighbors), right);
    neighbors = {};
    EXPECT_THAT(boid->getClosest(&neighbors), IsNull());
}

TEST_F(BoidTest, ANeighborBeyondAHundredThousandIsNotClose)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {});
    Boid* const away = boids.add(BOID_FISH, 1, {100000, 0, 0});
    std::vector<Boid*> neighbors = {away};
    EXPECT_THAT(boid->getClosest(&neighbors), IsNull());
    away->pos.x = below(100000);
    EXPECT_EQ(boid->getClosest(&neighbors), away);
    for (const float bad : {INF, -INF, NOT_A_NUMBER}) {
        away->pos.x = bad;
        EXPECT_THAT(boid->getClosest(&neighbors), IsNull());
    }
}

TEST_F(BoidTest, TheClosestSensorIsTheEarlierOfTwoEquallyClose)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0});
    EXPECT_THAT(boid->getClosestSensor(), IsNull());
    boids.addFarSensor();
    EXPECT_EQ(boid->getClosestSensor(), boids.sensors[0]);
    boids.addSensor({0.625f, 0.5f, 0});
    boids.addSensor({0.375f, 0.5f, 0});
    EXPECT_EQ(boid->getClosestSensor(), boids.sensors[1]);
    boids.addSensor({0.5f, 0.5f, NOT_A_NUMBER});
    EXPECT_EQ(boid->getClosestSensor(), boids.sensors[1]);
    boid->sensorList = nullptr;
    EXPECT_THAT(boid->getClosestSensor(), IsNull());
}

/// The factors that getAvoidVector drew for a boid \p distance away along x, y and z.
std::set<int> factors(TestBoids& boids, BOID_COLLISION_MODE mode, float distance)
{
    std::set<int> seen;
    const float component = distance / std::sqrt(3.0f);
    Boid* const boid = boids.add(BOID_FISH, 0, {component, component, component});
    Boid* const other = boids.add(BOID_FISH, 1, {});
    for (int n = 0; n < 1000; ++n) {
        Vec3 avoid;
        boid->getAvoidVector(avoid, other, mode);
        for (const float a : {avoid.x, avoid.y, avoid.z}) {
            seen.insert(static_cast<int>(std::lround(a / component)));
        }
    }
    return seen;
}

std::set<int> range(int first, int last)
{
    std::set<int> all;
    for (int i = first; i <= last; ++i) {
        all.insert(i);
    }
    return all;
}

TEST_F(BoidTest, TheAvoidanceFactorsGrowWithTheModeAndTheNearness)
{
    std::srand(1);
    EXPECT_EQ(factors(boids, BOUNCE, 0.01f), range(20, 59));
    EXPECT_EQ(factors(boids, BOUNCE, 0.02f), range(4, 11));
    EXPECT_EQ(factors(boids, HARDBOUNCE, 0.01f), range(60, 179));
    EXPECT_EQ(factors(boids, HARDBOUNCE, 0.02f), range(8, 23));
    EXPECT_EQ(factors(boids, SOFT, 0.01f), range(2, 5));
    EXPECT_EQ(factors(boids, SOFT, 0.02f), range(2, 5));
    EXPECT_EQ(factors(boids, BOUNCE, 0.04f), std::set<int>{0});
}

TEST_F(BoidTest, AvoidanceDrawsThreeNumbersOrNone)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.01f, 0, 0});
    Boid* const other = boids.add(BOID_FISH, 1, {});
    std::srand(5);
    ReferenceRandom random(5);
    Vec3 avoid(7, 7, 7);
    boid->getAvoidVector(avoid, other, BOUNCE);
    const float x = 0.01f * static_cast<float>(random.next() % 40 + 20);
    random.next();
    random.next();
    EXPECT_THAT(avoid, IsVec3(x, 0, 0));
    EXPECT_EQ(std::rand(), random.next());

    other->pos.x = 1;
    avoid = Vec3(7, 7, 7);
    boid->getAvoidVector(avoid, other, BOUNCE);
    EXPECT_THAT(avoid, IsVec3(7, 7, 7)) << "left as it was";
    EXPECT_EQ(std::rand(), random.next());
}

TEST_F(BoidTest, TheAvoidanceBordersBelongToTheOutside)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {});
    Boid* const other = boids.add(BOID_FISH, 1, {});
    const auto factor = [&](float distance) {
        other->pos.x = -distance;
        Vec3 avoid;
        boid->getAvoidVector(avoid, other, BOUNCE);
        return avoid.x / distance;
    };
    std::srand(1);
    for (int n = 0; n < 50; ++n) {
        EXPECT_EQ(factor(0.03f), 0);
        EXPECT_GE(factor(below(0.03f)), 3.99f);
        EXPECT_LE(factor(0.03f / 2), 11.01f);
        EXPECT_GE(factor(below(0.03f / 2)), 19.99f);
    }
    for (const float bad : {INF, NOT_A_NUMBER}) {
        other->pos.x = bad;
        Vec3 avoid;
        boid->getAvoidVector(avoid, other, BOUNCE);
        EXPECT_FALSE(avoid.isnonzero());
    }
}

TEST_F(BoidTest, TheClosestNeighborKicksByTwoPointTwoTimesTheAvoidance)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 2, 0});
    Boid* const near = boids.add(BOID_FISH, 1, {0.49f, 0.5f, 0});
    Boid* const nearer = boids.add(BOID_FISH, 2, {0.5f, 0.495f, 0});
    std::vector<Boid*> all = {near, nearer};
    std::srand(3);
    ReferenceRandom random(3);
    boid->doBoidCollision(&all);
    random.next();
    const float separation = 0.5f - 0.495f;
    const float avoid = separation * static_cast<float>(random.next() % 40 + 20);
    EXPECT_THAT(boid->vel, IsVec3(1, 2 + avoid * 2.2f, 0));
}

TEST_F(BoidTest, WithoutANeighborOrAtTheSamePlaceThereIsNoKick)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 2, 0});
    std::vector<Boid*> all;
    std::srand(3);
    boid->doBoidCollision(&all);
    EXPECT_THAT(boid->vel, IsVec3(1, 2, 0));
    all = {boids.add(BOID_FISH, 1, boid->pos)};
    std::srand(3);
    boid->doBoidCollision(&all);
    EXPECT_THAT(boid->vel, IsVec3(1, 2, 0)) << "no direction to go";
    ReferenceRandom random(3);
    for (int n = 0; n < 3; ++n) {
        random.next();
    }
    EXPECT_EQ(std::rand(), random.next()) << "the numbers are drawn all the same";
}

TEST_F(BoidTest, WithoutASensorTheBoidSaysSo)
{
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 2, 0});
    testing::internal::CaptureStdout();
    boid->moveToClosestSensor();
    boid->moveToClosestSensor();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sensor not found\nsensor not found\n");
    EXPECT_THAT(boid->vel, IsVec3(1, 2, 0));
    boids.addSensor({NOT_A_NUMBER, 0, 0});
    testing::internal::CaptureStdout();
    boid->moveToClosestSensor();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sensor not found\n");
    boids.addFarSensor();
    testing::internal::CaptureStdout();
    boid->moveToClosestSensor();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(BoidTest, AFishIsPulledTowardsASensorWithinAQuarter)
{
    boids.addSensor({0.5f, 0.5f, 0});
    Boid* const near = boids.add(BOID_FISH, 0, {0.5f, 0.45f, 0});
    near->moveToClosestSensor();
    EXPECT_THAT(near->vel, IsVec3(0, (0.5f - 0.45f) * 2, 0));
    Boid* const farther = boids.add(BOID_FISH, 1, {0.5f, 0.3f, 0}, {1, 1, 0});
    farther->moveToClosestSensor();
    EXPECT_THAT(farther->vel, IsVec3(1, 1 + (0.5f - 0.3f) * 2, 0));
}

TEST_F(BoidTest, ABubbleIsThrownOutWithinATenthAndPulledBeyond)
{
    boids.addSensor({0.5f, 0.5f, 0});
    Boid* const near = boids.add(BOID_BUBBLE, 10, {0.5f, 0.45f, 0});
    near->moveToClosestSensor();
    EXPECT_THAT(near->vel, IsVec3(0, (0.45f - 0.5f) * 25, 0));
    Boid* const farther = boids.add(BOID_BUBBLE, 10, {0.5f, 0.3f, 0});
    farther->moveToClosestSensor();
    EXPECT_THAT(farther->vel, IsVec3(0, (0.5f - 0.3f) * 2, 0));
}

TEST_F(BoidTest, TheBordersOfASensorsReachBelongToTheOutside)
{
    boids.addSensor({});
    for (const BOID_TYPE type : {BOID_FISH, BOID_BUBBLE}) {
        Boid* const boid = boids.add(type, 10, {0.25f, 0, 0});
        boid->moveToClosestSensor();
        EXPECT_THAT(boid->vel, IsVec3(0, 0, 0));
        boid->pos.x = below(0.25f);
        boid->moveToClosestSensor();
        EXPECT_THAT(boid->vel, IsVec3(-2 * boid->pos.x, 0, 0));
    }
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {0.1f, 0, 0}); // 0.1f is above 0.1
    bubble->moveToClosestSensor();
    EXPECT_THAT(bubble->vel, IsVec3(-0.2f, 0, 0));
    bubble->vel = {};
    bubble->pos.x = below(0.1f);
    bubble->moveToClosestSensor();
    EXPECT_THAT(bubble->vel, IsVec3(25 * bubble->pos.x, 0, 0));
}

} // namespace
