#include "SensorRep.h"

#include "ReferenceMatchers.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

class SensorRepTest : public testing::Test {
protected:
    SensorRepTest()
    {
        rep.pos = &pos;
        rep.vel = &vel;
    }

    Vec3 pos;
    Vec3 vel;
    SensorRep rep;
};

TEST_F(SensorRepTest, AFreshBodyHasNoTentaclesAndNoLists)
{
    EXPECT_FALSE(rep.initialized);
    EXPECT_EQ(rep.degree, 0);
    EXPECT_THAT(rep.tentacle, testing::IsEmpty());
    EXPECT_THAT(rep.cos_curve, testing::IsEmpty());
    EXPECT_THAT(rep.sin_curve, testing::IsEmpty());
    EXPECT_EQ(rep.baseAnim, nullptr);
    EXPECT_EQ(rep.sensorGeom, 0u);
}

TEST_F(SensorRepTest, WhatABodyHasNoUseForIsEmpty)
{
    Node* const node = &rep;
    EXPECT_EQ(node->getType(), RTTI_USER1);
    node->drawBBox();
    node->userEvent(nullptr);
    node->addTexture(nullptr);
    node->computeBBox();
    node->addGeometry(nullptr);
    node->print();
    node->cleanup();
    EXPECT_EQ(node->getTexture(), nullptr);
    EXPECT_EQ(node->getBBox(), nullptr);
    EXPECT_EQ(node->getGeometry(), nullptr);
    EXPECT_FALSE(rep.initialized);
}

TEST_F(SensorRepTest, TheTentaclesHoldTheLast24VelocitiesNewestFirst)
{
    for (int n = 1; n <= 30; ++n) {
        vel = Vec3(static_cast<float>(n), -static_cast<float>(n), 0);
        rep.doupdate();
        EXPECT_EQ(rep.tentacle.size(), static_cast<std::size_t>(std::min(n, 24)));
        EXPECT_EQ(rep.cos_curve.size(), rep.tentacle.size());
        EXPECT_EQ(rep.sin_curve.size(), rep.tentacle.size());
    }
    int n = 30;
    for (const Vertex* point : rep.tentacle) {
        EXPECT_FLOAT_EQ(point->x, -0.2f * static_cast<float>(n));
        EXPECT_FLOAT_EQ(point->y, 0.05f * static_cast<float>(n));
        --n;
    }
    EXPECT_EQ(n, 6);
}

TEST_F(SensorRepTest, AtRestAndSinkingTheWaveAdvancesBySevenAndAHalfDegrees)
{
    for (const float vy : {0.0f, -0.1f}) {
        vel.y = vy;
        rep.degree = 0;
        for (int n = 1; n <= 47; ++n) {
            rep.doupdate();
            EXPECT_EQ(rep.degree, 7.5f * static_cast<float>(n));
        }
        rep.doupdate();
        EXPECT_EQ(rep.degree, 0) << "at 360";
    }
}

TEST_F(SensorRepTest, RisingItAdvancesWithTheSpeed)
{
    vel = Vec3(0.04f, 0.03f, 0);
    rep.doupdate();
    EXPECT_FLOAT_EQ(rep.degree, static_cast<float>(2000 * std::sqrt(0.0009 + 0.0008)));
    rep.degree = 300;
    rep.doupdate();
    EXPECT_EQ(rep.degree, 0) << "set back, not reduced";
    vel = Vec3(0.04f, 1e-20f, 0);
    rep.doupdate();
    EXPECT_FLOAT_EQ(rep.degree, static_cast<float>(2000 * std::sqrt(0.0008)));
    vel.x = 0;
    rep.degree = 5;
    rep.doupdate();
    EXPECT_EQ(rep.degree, 5) << "too slow to be seen";
}

TEST_F(SensorRepTest, TheWaveIsThatOfTheTimeThePointWasAdded)
{
    rep.degree = 90;
    rep.doupdate();
    EXPECT_NEAR(rep.cos_curve.front(), 0, 1e-6);
    EXPECT_FLOAT_EQ(rep.sin_curve.front(), 0.025f);
    rep.degree = 0;
    rep.doupdate();
    EXPECT_FLOAT_EQ(rep.cos_curve.front(), 0.025f);
    EXPECT_EQ(rep.sin_curve.front(), 0);
    EXPECT_FLOAT_EQ(rep.sin_curve.back(), 0.025f);
}

TEST_F(SensorRepTest, AThousandUpdatesAreTheReferencesToTheBit)
{
    reference::Tentacles expected;
    std::mt19937 generator(4);
    std::uniform_real_distribution<float> speed(-0.15f, 0.15f);
    for (int n = 0; n < 1000; ++n) {
        vel = Vec3(speed(generator), speed(generator), 0);
        rep.doupdate();
        expected.update(toTriple(vel));
        ASSERT_THAT(rep.degree, SameBits(expected.degree.value));
        ASSERT_EQ(rep.tentacle.size(), expected.points.size());
        auto point = rep.tentacle.begin();
        for (const auto& p : expected.points) {
            ASSERT_THAT((*point)->x, SameBits(p->x.value));
            ASSERT_THAT((*point)->y, SameBits(p->y.value));
            ++point;
        }
        ASSERT_TRUE(same(rep.cos_curve, expected.cosines));
        ASSERT_TRUE(same(rep.sin_curve, expected.sines));
    }
}

TEST_F(SensorRepTest, AVelocityWithoutEndStartsTheWaveAgain)
{
    vel = Vec3(INF, 0.1f, 0);
    rep.doupdate();
    EXPECT_EQ(rep.degree, 0);
    vel = Vec3(0, -INF, 0);
    rep.doupdate();
    EXPECT_EQ(rep.degree, 7.5f);
    vel = Vec3(0, NOT_A_NUMBER, 0);
    rep.doupdate();
    EXPECT_EQ(rep.degree, 15);
    EXPECT_EQ(rep.tentacle.size(), 3u);
}

TEST_F(SensorRepTest, AVelocityThatIsNoNumberStartsTheWaveAgain)
{
    // As after a recording with the word "nan": one such update must not stop the wave for good.
    vel = Vec3(NOT_A_NUMBER, 0.1f, 0);
    rep.doupdate();
    EXPECT_EQ(rep.degree, 0);
    vel = Vec3(0, 0, 0);
    rep.doupdate();
    EXPECT_EQ(rep.degree, 7.5f);
}

TEST_F(SensorRepTest, TheGridIsAUnitSphereWithItsPolesOnTheYAxis)
{
    for (int j = 0; j <= 16; ++j) {
        const Vec3 top = rep.get_p(0, j);
        EXPECT_TRUE(Vec3::Equal(top, Vec3(0, 1, 0))) << j;
        const Vec3 bottom = rep.get_p(16, j);
        EXPECT_NEAR(bottom.x, 0, 1e-5);
        EXPECT_NEAR(bottom.y, -1, 1e-6);
        EXPECT_NEAR(bottom.z, 0, 1e-5);
    }
    const Vec3 equator = rep.get_p(8, 0);
    EXPECT_FLOAT_EQ(equator.x, 1);
    EXPECT_NEAR(equator.y, 0, 1e-5);
    EXPECT_EQ(equator.z, 0);
    const Vec3 quarter = rep.get_p(8, 4);
    EXPECT_NEAR(quarter.x, 0, 1e-5);
    EXPECT_FLOAT_EQ(quarter.z, 1);
    for (int i = 0; i <= 16; ++i) {
        for (int j = 0; j <= 16; ++j) {
            EXPECT_NEAR(rep.get_p(i, j).length(), 1, 1e-6);
        }
    }
}

TEST_F(SensorRepTest, TheGridIsTheReferencesToTheBit)
{
    for (int i = 0; i <= 16; ++i) {
        for (int j = 0; j <= 16; ++j) {
            EXPECT_THAT(rep.get_p(i, j), SameTriple(reference::spherePoint(i, j))) << i << " " << j;
        }
    }
}

TEST_F(SensorRepTest, EveryPointOfEveryFrameIsTheReferencesToTheBit)
{
    for (int frame = 0; frame < 240; ++frame) {
        for (int i = 0; i <= 16; ++i) {
            for (int j = 0; j <= 16; ++j) {
                const Vec3 p = rep.get_p(i, j);
                const Vec3 deformed = rep.get_mod_p(p.x, p.y, p.z, frame);
                ASSERT_THAT(deformed, SameTriple(reference::bodyPoint(toTriple(p), frame)))
                    << "frame " << frame << ", point " << i << " " << j;
            }
        }
    }
}

TEST_F(SensorRepTest, PointsBesideTheGridAreTheReferencesToTheBit)
{
    std::mt19937 generator(8);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    for (int n = 0; n < 5000; ++n) {
        const Vec3 p(coordinate(generator), coordinate(generator), coordinate(generator));
        const int frame = n % 240;
        ASSERT_THAT(rep.get_mod_p(p.x, p.y, p.z, frame),
                    SameTriple(reference::bodyPoint(toTriple(p), frame)))
            << "frame " << frame;
    }
}

TEST_F(SensorRepTest, OnlyFrameZeroIsNotFinite)
{
    for (int i = 0; i <= 15; ++i) {
        for (int j = 0; j <= 16; ++j) {
            const Vec3 p = rep.get_p(i, j);
            const Vec3 zero = rep.get_mod_p(p.x, p.y, p.z, 0);
            EXPECT_FALSE(std::isfinite(zero.x));
            EXPECT_TRUE(std::isfinite(zero.y));
            EXPECT_FALSE(std::isfinite(zero.z));
            for (int frame = 1; frame < 240; ++frame) {
                const Vec3 m = rep.get_mod_p(p.x, p.y, p.z, frame);
                ASSERT_TRUE(std::isfinite(m.x) && std::isfinite(m.y) && std::isfinite(m.z));
            }
        }
    }
}

TEST_F(SensorRepTest, ThePoleOfAFrameWorkedOutByHand)
{
    // The top (0, 1, 0) in frame 120: every wrapped angle is a residue near 0, so that the ripples
    // are those of u = 590 and w = 190 radians, and the height has the full cosine.
    const Vec3 pole = rep.get_mod_p(0, 1, 0, 120);
    const double residue = 1e-3;
    EXPECT_NEAR(pole.x, std::sin(190) * 0.08 * std::cos(190) * std::cos(190), residue);
    EXPECT_NEAR(pole.y, 0.4 * (1.4 + 1 + 0.5 / 1.3), residue);
    EXPECT_NEAR(pole.z, std::cos(590) * 0.08 * std::cos(590) * std::cos(590), residue);
}

} // namespace
