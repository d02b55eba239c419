#include "Sensor.h"

#include "MoCap.h"
#include "ReferenceMatchers.h"
#include "SensorRep.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <unistd.h>

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// A sensor and the recording that it follows.
class TestSensor {
public:
    explicit TestSensor(int id, const std::vector<Vec3>& positions = {Vec3()})
    {
        for (int k = 0; k < 3; ++k) {
            mocap.sensorDataList.push_back(new SensorData);
        }
        sensor.mocap = &mocap;
        sensor.sensorId = id;
        for (const Vec3& position : positions) {
            series().push_back(new Vec3(position));
        }
    }
    TestSensor(const TestSensor&) = delete;
    TestSensor& operator=(const TestSensor&) = delete;
    ~TestSensor() { delete sensor.rep; }

    std::vector<Vec3*>& series()
    {
        return mocap.sensorDataList[static_cast<std::size_t>(sensor.sensorId)]->pos;
    }

    Sensor* operator->() { return &sensor; }

    /// Puts the sensor at rest where a sample at the origin takes it.
    void settle()
    {
        *series()[0] = Vec3();
        mocap.step = 0;
        sensor.doupdate();
        sensor.doupdate();
        sensor.current_tilt = 0;
    }

    /// Updates from rest with the position so that the horizontal velocity is that of a sample
    /// \p x to the right.
    void moveBy(float x)
    {
        sensor.pos_old = Vec3(0.55f, -0.1f, 0);
        *series()[0] = Vec3(x, 0, 0);
        sensor.doupdate();
    }

    MoCap mocap;
    Sensor sensor;
};

TEST(SensorTest, ConstructorDrawsASmallVelocityFromTwoNumbers)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        std::srand(seed);
        TestSensor sensor(0);
        ReferenceRandom random(seed);
        const int a = random.next();
        const int b = random.next();
        EXPECT_THAT(sensor->vel, IsVec3(static_cast<float>(a % 100 - 50) / 10000.0f,
                                        static_cast<float>(b % 100 - 50) / 10000.0f, 0));
        EXPECT_EQ(std::rand(), random.next()) << "two numbers, no more";
    }
}

TEST(SensorTest, AFreshSensorRestsAtTheOriginWithItsBodyAsItsChild)
{
    TestSensor sensor(0);
    EXPECT_THAT(sensor->pos, IsVec3(0, 0, 0));
    EXPECT_THAT(sensor->pos_old, IsVec3(0, 0, 0));
    EXPECT_THAT(sensor->orientation, IsVec3(0, 1, 0));
    EXPECT_FALSE(sensor->initialized);
    EXPECT_EQ(sensor->tilt[0], -35);
    EXPECT_EQ(sensor->tilt[1], 35);
    EXPECT_EQ(sensor->current_tilt, 0);
    EXPECT_THAT(sensor->children, testing::ElementsAre(sensor->rep));
    EXPECT_EQ(sensor->rep->getParent(), &sensor.sensor);
    EXPECT_EQ(sensor->rep->pos, &sensor->pos) << "the body reads them live";
    EXPECT_EQ(sensor->rep->vel, &sensor->vel);
}

TEST(SensorTest, CullOnlyInitializes)
{
    TestSensor sensor(0);
    EXPECT_EQ(sensor->cull(), 1) << "without a GL context";
    EXPECT_TRUE(sensor->initialized);
    EXPECT_EQ(sensor->cull(), 1);
    sensor->draw();
}

TEST(SensorTest, AFastSensorJumpsButItsNodeStays)
{
    TestSensor sensor(0, {{1, 1, 3}});
    sensor->doupdate();
    EXPECT_THAT(*sensor.series()[0], IsVec3(0.45f, 0.45f, 3 * 0.45f)) << "shrunk in the recording";
    EXPECT_EQ(sensor->transformmat[12], 0) << "where it was";
    EXPECT_EQ(sensor->transformmat[13], 0);
    EXPECT_EQ(sensor->transformmat[14], 0);
    EXPECT_THAT(sensor->vel, IsVec3(0.15f, 0.15f, 0));
    EXPECT_FLOAT_EQ(sensor->pos.x, 1.05f);
    EXPECT_FLOAT_EQ(sensor->pos.y, 0.35f);
    EXPECT_EQ(sensor->pos.z, 0);
    EXPECT_THAT(sensor->pos_old, SameTriple(toTriple(sensor->pos)));
    EXPECT_EQ(sensor->current_tilt, -5);
    EXPECT_THAT(
        sensor->rep->transformmat,
        SameMatrix(reference::product(reference::identity(), reference::rotationAboutZ(-5.0f))));
}

TEST(SensorTest, EachSensorHasItsPlace)
{
    const float x[] = {0.6f, 0.55f, 0.5f};
    for (int id = 0; id < 3; ++id) {
        TestSensor sensor(id);
        sensor->transformmat[14] = 9;
        sensor->doupdate();
        EXPECT_FLOAT_EQ(sensor->pos.x, x[id]);
        EXPECT_FLOAT_EQ(sensor->pos.y, -0.1f);
        EXPECT_EQ(sensor->pos.z, 0);
    }
}

TEST(SensorTest, ThePlaceIsAddedUpInDoublePrecisionWithOneRoundingEach)
{
    std::mt19937 generator(2);
    std::uniform_real_distribution<float> coordinate(-2, 2);
    for (int id = 0; id < 3; ++id) {
        TestSensor sensor(id);
        for (int n = 0; n < 500; ++n) {
            const float px = coordinate(generator);
            const float py = coordinate(generator);
            *sensor.series()[0] = Vec3(px, py, 1);
            sensor->doupdate();
            volatile float x = px * 0.45f;
            volatile float y = py * 0.45f;
            if (id != 1) {
                x = static_cast<float>(static_cast<double>(x) + (id == 0 ? 0.05 : -0.05));
            }
            x = static_cast<float>(static_cast<double>(x) + 0.55);
            y = static_cast<float>(static_cast<double>(y) - 0.1);
            ASSERT_THAT(sensor->pos, IsVec3(x, y, 0));
        }
    }
}

TEST(SensorTest, AStepThatIsMetAgainShrinksAgain)
{
    TestSensor sensor(1, {{1, 2, 3}, {4, 5, 6}});
    sensor->doupdate();
    EXPECT_THAT(*sensor.series()[0], IsVec3(0.45f, 0.9f, 3 * 0.45f));
    sensor->doupdate();
    EXPECT_THAT(*sensor.series()[0], IsVec3(0.45f * 0.45f, 0.9f * 0.45f, 3 * 0.45f * 0.45f));
    EXPECT_FLOAT_EQ(sensor.series()[0]->x, 0.2025f);
    EXPECT_THAT(*sensor.series()[1], IsVec3(4, 5, 6)) << "other steps do not";
    sensor.mocap.step = 1;
    sensor->doupdate();
    EXPECT_THAT(*sensor.series()[1], IsVec3(4 * 0.45f, 5 * 0.45f, 6 * 0.45f));
}

TEST(SensorTest, ASlowSensorsNodeGoesWithIt)
{
    TestSensor sensor(1, {{}, {0.1f, -0.1f, 0}});
    sensor.settle();
    sensor.mocap.step = 1;
    const Vec3 before = sensor->pos;
    sensor->doupdate();
    EXPECT_FLOAT_EQ(sensor->pos.x, 0.595f);
    EXPECT_FLOAT_EQ(sensor->pos.y, -0.145f);
    EXPECT_EQ(sensor->transformmat[12], sensor->pos.x);
    EXPECT_EQ(sensor->transformmat[13], sensor->pos.y);
    EXPECT_THAT(sensor->vel, IsVec3(sensor->pos.x - before.x, sensor->pos.y - before.y, 0));
}

TEST(SensorTest, EachComponentIsLimitedByItself)
{
    const float fast = 1; // 0.45 a step
    for (const float sign : {1.0f, -1.0f}) {
        TestSensor x(1, {{}, {sign * fast, 0.1f, 0}});
        x.settle();
        x.mocap.step = 1;
        x->doupdate();
        EXPECT_THAT(x->vel.x, SameBits(sign * 0.15f));
        EXPECT_NEAR(x->vel.y, 0.045, 1e-6);
        EXPECT_FLOAT_EQ(x->transformmat[12], 0.55f) << "back";
        EXPECT_FLOAT_EQ(x->transformmat[13], -0.055f) << "goes on";
        EXPECT_FLOAT_EQ(x->pos.x, 0.55f + sign * 0.45f) << "not taken back";

        TestSensor y(1, {{}, {0.1f, sign * fast, 0}});
        y.settle();
        y.mocap.step = 1;
        y->doupdate();
        EXPECT_THAT(y->vel.y, SameBits(sign * 0.15f));
        EXPECT_NEAR(y->vel.x, 0.045, 1e-6);
        EXPECT_FLOAT_EQ(y->transformmat[12], 0.595f);
        EXPECT_FLOAT_EQ(y->transformmat[13], -0.1f);
    }
}

TEST(SensorTest, AfterAJumpTheNodeFollowsAtOnce)
{
    TestSensor sensor(1, {{1, 0, 0}, {1, 0, 0}});
    sensor->doupdate();
    EXPECT_EQ(sensor->transformmat[12], 0);
    sensor.mocap.step = 1;
    sensor->doupdate();
    EXPECT_EQ(sensor->transformmat[12], sensor->pos.x) << "it no longer moves";
    EXPECT_EQ(sensor->vel.x, 0);
}

TEST(SensorTest, ASpeedOfTheLimitItselfIsKept)
{
    TestSensor sensor(1, {{-0.6f, 0, 0}});
    sensor->doupdate();
    const float place = sensor->pos.x;
    for (const float speed : {0.15f, -0.15f}) {
        *sensor.series()[0] = Vec3(-0.6f, 0, 0);
        sensor->transformmat[12] = 7;
        sensor->pos_old.x = place - speed;
        ASSERT_EQ(place - sensor->pos_old.x, speed) << "no rounding in the way";
        sensor->doupdate();
        EXPECT_EQ(sensor->vel.x, speed);
        EXPECT_EQ(sensor->transformmat[12], place) << "not taken back";
    }
}

TEST(SensorTest, MovingToTheLeftTiltsUpToOneStepBeyondTheLimit)
{
    TestSensor sensor(1);
    reference::Mat body = reference::identity();
    for (int n = 1; n <= 10; ++n) {
        sensor.moveBy(-0.1f);
        ASSERT_LT(sensor->vel.x, 0);
        EXPECT_EQ(sensor->current_tilt, std::min(5.0f * static_cast<float>(n), 40.0f));
        if (n <= 8) {
            body = reference::product(body, reference::rotationAboutZ(5.0f));
        }
        EXPECT_THAT(sensor->rep->transformmat, SameMatrix(body));
    }
    for (int n = 1; n <= 20; ++n) {
        sensor.moveBy(0.1f);
        ASSERT_GT(sensor->vel.x, 0);
        EXPECT_EQ(sensor->current_tilt, std::max(40 - 5.0f * static_cast<float>(n), -40.0f));
        if (n <= 16) {
            body = reference::product(body, reference::rotationAboutZ(-5.0f));
        }
        EXPECT_THAT(sensor->rep->transformmat, SameMatrix(body));
    }
}

TEST(SensorTest, AHorizontalSpeedOfZeroLeavesTheTilt)
{
    TestSensor sensor(1);
    sensor.settle();
    sensor->current_tilt = 15;
    *sensor.series()[0] = Vec3(0, 0.1f, 0);
    sensor->doupdate();
    EXPECT_EQ(sensor->vel.x, 0);
    EXPECT_GT(sensor->vel.y, 0);
    EXPECT_EQ(sensor->current_tilt, 15);
    EXPECT_EQ(sensor->transformmat[13], sensor->pos.y);
}

TEST(SensorTest, ASpeedLimitedToTheRightTiltsToo)
{
    TestSensor sensor(1);
    sensor.moveBy(100);
    EXPECT_EQ(sensor->current_tilt, -5);
    sensor.moveBy(-100);
    EXPECT_EQ(sensor->current_tilt, 0);
}

TEST(SensorTest, APositionWithoutEndMovesNothing)
{
    for (const float bad : {INF, -INF}) {
        TestSensor sensor(1);
        sensor.settle();
        *sensor.series()[0] = Vec3(bad, bad, bad);
        sensor->doupdate();
        EXPECT_FLOAT_EQ(sensor->transformmat[12], 0.55f);
        EXPECT_FLOAT_EQ(sensor->transformmat[13], -0.1f);
        EXPECT_THAT(sensor->vel, IsVec3(std::copysign(0.15f, bad), std::copysign(0.15f, bad), 0));
        EXPECT_EQ(sensor->pos.x, bad);
    }
}

TEST(SensorTest, APositionThatIsNoNumberDoesNotTilt)
{
    TestSensor sensor(1);
    sensor.settle();
    *sensor.series()[0] = Vec3(NOT_A_NUMBER, 0, 0);
    sensor->doupdate();
    EXPECT_EQ(sensor->current_tilt, 0);
    EXPECT_TRUE(std::isnan(sensor->vel.x));
    EXPECT_TRUE(std::isnan(sensor->transformmat[12]));
    EXPECT_FLOAT_EQ(sensor->transformmat[13], -0.1f);
    EXPECT_EQ(sensor->transformmat[14], 0);
}

TEST(SensorTest, WithoutARecordingNothingHappens)
{
    TestSensor sensor(1);
    sensor->mocap = nullptr;
    const Vec3 before = sensor->vel;
    sensor->doupdate();
    EXPECT_THAT(sensor->vel, SameTriple(toTriple(before)));
    EXPECT_EQ(sensor->transformmat[12], 0);
}

/// Runs an update that is expected to end the process; what it prints goes to standard error.
void updateNoisily(TestSensor& sensor)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    sensor->doupdate();
}

TEST(SensorDeathTest, AStepAtTheEndOfTheSeriesEndsTheProcessSilently)
{
    TestSensor sensor(1, {{1, 1, 1}, {2, 2, 2}});
    sensor.mocap.step = 2;
    EXPECT_EXIT(updateNoisily(sensor), testing::ExitedWithCode(1), testing::StrEq(""));
    sensor.mocap.step = 1000;
    EXPECT_EXIT(updateNoisily(sensor), testing::ExitedWithCode(1), testing::StrEq(""));
    sensor.mocap.step = 1;
    sensor->doupdate();
    EXPECT_THAT(*sensor.series()[0], IsVec3(1, 1, 1));
}

TEST(SensorDeathTest, TheVoicesEndIsReachedOnlyBehindTheLastSample)
{
    // Fractions of the voice, and the samples of a recording: exactly the last sample, the next
    // number above it, and the end of the voice.
    for (const int samples : {2, 3, 1000, 5400, 10800, 10801}) {
        TestSensor sensor(1, std::vector<Vec3>(static_cast<std::size_t>(samples)));
        const float last = static_cast<float>(samples - 1) / static_cast<float>(samples);
        sensor.mocap.step = MoCap::stepAt(samples, last);
        EXPECT_EQ(sensor.mocap.step, samples - 1);
        sensor->doupdate();
        for (const float fraction : {std::nextafter(last, 2.0f), 1.0f}) {
            sensor.mocap.step = MoCap::stepAt(samples, fraction);
            EXPECT_EQ(sensor.mocap.step, samples) << fraction;
            EXPECT_EXIT(updateNoisily(sensor), testing::ExitedWithCode(1), testing::StrEq(""));
        }
    }
}

/// Deliberate: a fraction whose product rounds down to the last sample still shows it.
TEST(SensorTest, TheProductWithTheFractionIsOfSinglePrecision)
{
    for (const int samples : {6, 8193}) {
        float fraction = static_cast<float>(samples - 1) / static_cast<float>(samples);
        EXPECT_EQ(MoCap::stepAt(samples, fraction), samples - 1);
        fraction = std::nextafter(fraction, 2.0f);
        EXPECT_EQ(MoCap::stepAt(samples, fraction), samples - 1);
        fraction = std::nextafter(fraction, 2.0f);
        EXPECT_EQ(MoCap::stepAt(samples, fraction), samples);
    }
}

TEST(SensorDeathTest, ASampleThatIsNotThereEndsTheProcessToo)
{
    TestSensor sensor(1);
    sensor.mocap.step = -1;
    EXPECT_EXIT(updateNoisily(sensor), testing::ExitedWithCode(1), testing::StrEq(""));
    sensor.mocap.step = 0;
    for (const int id : {-1, 2, 3}) {
        sensor->sensorId = id; // series 2 is empty, the others are not there
        EXPECT_EXIT(updateNoisily(sensor), testing::ExitedWithCode(1), testing::StrEq(""));
    }
    sensor->sensorId = 1;
}

TEST(SensorTest, AThousandStepsAreTheReferencesToTheBit)
{
    for (int id = 0; id < 3; ++id) {
        const auto seed = static_cast<unsigned>(id);
        std::srand(seed);
        TestSensor sensor(id);
        ReferenceRandom random(seed);
        reference::Sensor expected(id, random);
        std::mt19937 generator(seed);
        std::normal_distribution<float> jump(0, 0.3f);
        reference::Triple sample;
        for (int n = 0; n < 1000; ++n) {
            if (n % 4 != 3) {
                sample = sample + reference::Triple{jump(generator), jump(generator), 0.1f};
                *sensor.series()[0] = toVec3(sample);
            }
            sensor->doupdate();
            sensor->rep->doupdate();
            expected.update(sample);
            expected.rep.update(expected.vel);
            ASSERT_THAT(*sensor.series()[0], SameTriple(sample));
            ASSERT_THAT(sensor->pos, SameTriple(expected.pos));
            ASSERT_THAT(sensor->pos_old, SameTriple(expected.oldPos));
            ASSERT_THAT(sensor->vel, SameTriple(expected.vel));
            ASSERT_EQ(sensor->current_tilt, expected.currentTilt.value);
            ASSERT_THAT(sensor->transformmat, SameMatrix(expected.transform));
            ASSERT_THAT(sensor->rep->transformmat, SameMatrix(expected.rep.transform));
            ASSERT_THAT(sensor->rep->degree, SameBits(expected.rep.degree.value));
        }
    }
}

TEST(SensorTest, WhatASensorHasNoUseForIsEmpty)
{
    TestSensor sensor(0);
    Node* const node = &sensor.sensor;
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
    EXPECT_FALSE(sensor->initialized);
}

} // namespace
