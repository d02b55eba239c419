#include "Boid.h"

#include "Boider.h"
#include "TestBoids.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

/// A boid's step: walls, flock, limit and the turn of its sprite.

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

float below(float v)
{
    return std::nextafterf(v, -INF);
}

class BoidMoveTest : public testing::Test {
protected:
    /// One step of a boid that is alone, far from all sensors.
    static void moveAlone(Boid* boid)
    {
        std::vector<Boid*> nobody;
        boid->move(&nobody, &nobody);
    }

    TestBoids boids;
};

TEST_F(BoidMoveTest, AWallPushesByHalfAUnit)
{
    boids.addFarSensor();
    const auto pushed = [this](BOID_TYPE type, float x, float y) {
        Boid* const boid = boids.add(type, 0, {x, y, 0});
        moveAlone(boid);
        return boid->orientation; // the velocity before it is limited
    };
    EXPECT_THAT(pushed(BOID_FISH, 0.04f, 0.5f), IsVec3(0.5f, 0, 0));
    EXPECT_THAT(pushed(BOID_FISH, 0.96f, 0.5f), IsVec3(-0.5f, 0, 0));
    EXPECT_THAT(pushed(BOID_FISH, 0.5f, 0.04f), IsVec3(0, 0.5f, 0));
    EXPECT_THAT(pushed(BOID_FISH, 0.5f, 0.96f), IsVec3(0, -0.5f, 0));
    EXPECT_THAT(pushed(BOID_FISH, 0.04f, 0.96f), IsVec3(0.5f, -0.5f, 0));
    EXPECT_THAT(pushed(BOID_FISH, 0.5f, 0.5f), IsVec3(0, 0, 0));
    // Also far outside.
    EXPECT_THAT(pushed(BOID_FISH, -3, 4), IsVec3(0.5f, -0.5f, 0));
}

TEST_F(BoidMoveTest, ABubbleHasNoWallAboveIt)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_BUBBLE, 10, {0.5f, 0.96f, 0});
    moveAlone(boid);
    const float rise = (1.5f - 0.96f) * 0.65f;
    EXPECT_THAT(boid->orientation, IsVec3(0, rise, 0));
    Boid* const atTheFloor = boids.add(BOID_BUBBLE, 10, {0.5f, 0.04f, 0});
    moveAlone(atTheFloor);
    EXPECT_THAT(atTheFloor->orientation, IsVec3(0, 0.5f + (1.5f - 0.04f) * 0.65f, 0));
}

TEST_F(BoidMoveTest, TheWallTestsLookAheadInDoublePrecision)
{
    boids.addFarSensor();
    // Along x and y alike.
    const auto pushed = [this](float at, float velocity) {
        Boid* const boid = boids.add(BOID_FISH, 0, {at, at, 0}, {velocity, velocity, 0});
        moveAlone(boid);
        EXPECT_EQ(boid->orientation.x, boid->orientation.y);
        return boid->orientation.x - velocity;
    };
    // 0.05f is above 0.05 and 0.95f below 0.95: neither is at the wall.
    EXPECT_EQ(pushed(0.05f, 0), 0);
    EXPECT_EQ(pushed(below(0.05f), 0), 0.5f);
    EXPECT_EQ(pushed(0.95f, 0), 0);
    EXPECT_EQ(pushed(std::nextafterf(0.95f, 1), 0), -0.5f);
    // A hundredth of the velocity ahead.
    EXPECT_EQ(pushed(0.0625f, -1.25f), 0.5f);
    EXPECT_EQ(pushed(0.0625f, -1.24f), 0);
    EXPECT_EQ(pushed(0.9375f, 1.25f), -0.5f);
    EXPECT_EQ(pushed(0.9375f, 1.24f), 0);
}

TEST_F(BoidMoveTest, ABoidAloneSwimsOnAsItWas)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 2, 0});
    boid->flockCenter = Vec3(7, 8, 9);
    std::srand(1);
    moveAlone(boid);
    EXPECT_THAT(boid->vel, IsVec3(1, 2, 0));
    EXPECT_THAT(boid->flockCenter, IsVec3(7, 8, 9)) << "there is no flock";
    EXPECT_EQ(std::rand(), ReferenceRandom(1).next());
}

TEST_F(BoidMoveTest, AFlockPullsTowardsItsCenterAndItsVelocity)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 0, 0});
    Boid* const a = boids.add(BOID_FISH, 1, {0.5f, 0.5625f, 0}, {1, 4, 0});
    Boid* const b = boids.add(BOID_FISH, 2, {0.5625f, 0.5f, 0}, {3, 0, 0});
    std::vector<Boid*> flock = {a, b};
    boid->move(&flock, &flock);
    // Center (0.53125, 0.53125), 0.044 away; mean velocity (2, 2).
    EXPECT_THAT(boid->flockCenter, IsVec3(0.53125f, 0.53125f, 0));
    const float towards = 0.03125f * 0.14f;
    EXPECT_THAT(boid->vel, IsVec3((1 + towards) + 1 * 0.04f, (0 + towards) + 2 * 0.04f, 0));
}

TEST_F(BoidMoveTest, AFlockFarAwaySetsTheVelocityTwiceAsMuch)
{
    boids.addFarSensor();
    Boid* const other = boids.add(BOID_FISH, 1, {0.5f, 0.5f, 0}, {4, 0, 0});
    std::vector<Boid*> flock = {other};
    Boid* const boid = boids.add(BOID_FISH, 0, {0.375f, 0.5f, 0});
    boid->move(&flock, &flock);
    EXPECT_THAT(boid->vel, IsVec3(0.125f * 0.14f + 8 * 0.04f, 0, 0)) << "at 0.125 exactly";
    Boid* const nearer = boids.add(BOID_FISH, 0, {std::nextafterf(0.375f, 1), 0.5f, 0});
    nearer->move(&flock, &flock);
    EXPECT_THAT(nearer->vel, IsVec3((0.5f - nearer->pos.x) * 0.14f + 4 * 0.04f, 0, 0));
}

TEST_F(BoidMoveTest, TheLargestComponentOfAStepIsLimitedToSeven)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {10, -3, 0});
    moveAlone(boid);
    const float factor = 7.0f / 10.0f;
    EXPECT_THAT(boid->vel, IsVec3(10 * factor, -3 * factor, 0));
    EXPECT_FLOAT_EQ(boid->vel.x, 7);
    EXPECT_FLOAT_EQ(boid->vel.y, -2.1f);
    EXPECT_THAT(boid->orientation, IsVec3(10, -3, 0)) << "the heading is not limited";
    EXPECT_FLOAT_EQ(boid->transformmat[12], 0.507f);
    EXPECT_FLOAT_EQ(boid->transformmat[13], 0.4979f);
    EXPECT_THAT(boid->pos, IsVec3(0.5f, 0.5f, 0)) << "read again by the next update";
}

/// The direction into which the sprite's own y axis points, in its boid's frame.
Vec3 spriteHeading(Boid* boid)
{
    const float* const m = boid->boider->transformmat;
    return {m[4], m[5], m[6]};
}

TEST_F(BoidMoveTest, TheFirstUpdateTurnsTheSpriteFromUpwardsToTheVelocity)
{
    boids.addFarSensor();
    const Vec3 velocities[] = {{1, 0, 0}, {-1, 0, 0}, {1, 1, 0}, {-2, 1, 0}, {0.5f, -3, 0}};
    for (const Vec3& velocity : velocities) {
        Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, velocity);
        moveAlone(boid);
        EXPECT_NEAR(spriteHeading(boid).x, velocity.x / velocity.length(), 1e-5);
        EXPECT_NEAR(spriteHeading(boid).y, velocity.y / velocity.length(), 1e-5);
        moveAlone(boid);
        EXPECT_NEAR(spriteHeading(boid).x, velocity.x / velocity.length(), 1e-3);
    }
}

TEST_F(BoidMoveTest, LaterUpdatesTurnTheSpriteOnFromWhereItIs)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {2, 1, 0});
    moveAlone(boid);
    const Vec3 velocities[] = {{-1, 2, 0}, {-3, -1, 0}, {1, -1, 0}, {0.1f, 5, 0}};
    for (const Vec3& velocity : velocities) {
        boid->vel = velocity;
        moveAlone(boid);
        EXPECT_NEAR(spriteHeading(boid).x, velocity.x / velocity.length(), 1e-3);
        EXPECT_NEAR(spriteHeading(boid).y, velocity.y / velocity.length(), 1e-3);
    }
}

TEST_F(BoidMoveTest, AVelocityWithoutADirectionTurnsNothing)
{
    boids.addFarSensor();
    for (const float bad : {0.0f, INF, NOT_A_NUMBER}) {
        Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {bad, 0, 0});
        moveAlone(boid);
        EXPECT_THAT(boid->boider->transformmat, SameMatrix(reference::identity())) << bad;
    }
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {1, 0, 0});
    boid->orientation = Vec3();
    moveAlone(boid);
    EXPECT_THAT(boid->boider->transformmat, SameMatrix(reference::identity()));
}

TEST_F(BoidMoveTest, TurningBackTurnsHalfATurnToTheLeft)
{
    boids.addFarSensor();
    Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, {0, -1, 0});
    moveAlone(boid);
    EXPECT_NEAR(spriteHeading(boid).x, 0, 1e-4);
    EXPECT_NEAR(spriteHeading(boid).y, -1, 1e-4);
    EXPECT_THAT(boid->boider->transformmat, SameMatrix(reference::rotationAboutZ(180.0f)));
}

TEST_F(BoidMoveTest, AStraightCourseTurnsNothing)
{
    boids.addFarSensor();
    for (int n = 1; n <= 100; ++n) {
        const Vec3 velocity(0.01f * static_cast<float>(n), 1, 0);
        Boid* const boid = boids.add(BOID_FISH, 0, {0.5f, 0.5f, 0}, velocity);
        boid->orientation = velocity;
        moveAlone(boid);
        // The cosine comes out as 1 or, by rounding, above it, which has no angle.
        EXPECT_THAT(boid->boider->transformmat, SameMatrix(reference::identity()));
    }
}

TEST_F(BoidMoveTest, ABoidWithoutASpriteMovesToo)
{
    boids.addFarSensor();
    Boid boid;
    boid.sensorList = &boids.sensors;
    boid.pos = Vec3(0.5f, 0.5f, 0);
    boid.vel = Vec3(1, 2, 0);
    boid.orientation = Vec3(0, 1, 0);
    moveAlone(&boid);
    EXPECT_THAT(boid.orientation, IsVec3(1, 2, 0));
    EXPECT_EQ(boid.transformmat[12], 1);
    EXPECT_EQ(boid.transformmat[13], 2);
}

TEST_F(BoidMoveTest, ManyStepsInRandomCompanyAreTheReferencesToTheBit)
{
    std::mt19937 generator(5);
    const auto between = [&generator](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(generator);
    };
    const auto place = [&between] { return Vec3(between(-0.02f, 1.02f), between(0, 1), 0); };
    for (unsigned n = 0; n < 1000; ++n) {
        TestBoids company;
        const BOID_TYPE type = n % 3 == 0 ? BOID_BUBBLE : BOID_FISH;
        Boid* const boid = company.add(type, 1, place(), {between(-9, 9), between(-9, 9), 0});
        reference::Boid expected(type == BOID_BUBBLE, toTriple(boid->pos));
        expected.vel = toTriple(boid->vel);
        expected.orientation = {between(-5, 5), between(-5, 5), 0.0f};
        boid->orientation = toVec3(expected.orientation);
        expected.translate(expected.pos);
        expected.scale(0.001f);

        std::vector<Boid*> neighbors;
        std::vector<reference::Boid> others;
        const float reach = n % 2 == 0 ? 0.02f : 0.2f;
        for (unsigned k = 0; k < n % 6; ++k) {
            const Vec3 offset(between(-reach, reach), between(-reach, reach), 0);
            const Vec3 velocity(between(-7, 7), between(-7, 7), 0);
            neighbors.push_back(company.add(BOID_FISH, 2, boid->pos + offset, velocity));
            others.emplace_back(false, toTriple(boid->pos + offset));
            others.back().vel = toTriple(velocity);
        }
        std::vector<reference::Boid*> otherPointers;
        for (reference::Boid& other : others) {
            otherPointers.push_back(&other);
        }
        std::array<reference::Triple, 3> sensors;
        std::vector<const reference::Triple*> sensorPointers;
        for (reference::Triple& sensor : sensors) {
            const Vec3 at = boid->pos + Vec3(between(-0.3f, 0.3f), between(-0.3f, 0.3f), 0);
            company.addSensor(at);
            sensor = toTriple(at);
            sensorPointers.push_back(&sensor);
        }

        std::srand(n);
        ReferenceRandom random(n);
        boid->move(&neighbors, &neighbors);
        expected.move(otherPointers, otherPointers, sensorPointers, random);
        SCOPED_TRACE(n);
        ASSERT_THAT(boid->vel, SameTriple(expected.vel));
        ASSERT_THAT(boid->orientation, SameTriple(expected.orientation));
        ASSERT_THAT(boid->flockCenter, SameTriple(expected.flockCenter));
        ASSERT_THAT(boid->transformmat, SameMatrix(expected.transform));
        ASSERT_THAT(boid->boider->transformmat, SameMatrix(expected.sprite));
        ASSERT_EQ(std::rand(), random.next());
    }
}

} // namespace
