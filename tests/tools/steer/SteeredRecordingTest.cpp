#include "SteeredRecording.h"

#include "Sensor.h"
#include "TestRecording.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

/// An update of the sensor of a figure that meets a step.
void update(Sensor& sensor, MoCap& recording, int step)
{
    sensor.mocap = &recording;
    recording.step = step;
    sensor.doupdate();
}

} // namespace

TEST(SteeredRecordingTest, AStepThatIsMetAgainIsAsItWasRead)
{
    const auto moving = [](int, int step) { return Vec3(0.1F * static_cast<float>(step), 1, 0); };
    const auto played = recordingOf(4, moving);
    const auto fresh = recordingOf(4, moving);
    SteeredRecording recording(*played);
    Sensor once;
    Sensor often;
    once.sensorId = often.sensorId = 1;
    update(once, *fresh, 2);
    for (int i = 0; i < 5; ++i) {
        recording.write(2, {});
        update(often, *played, 2);
        EXPECT_EQ(often.pos.x, once.pos.x);
        EXPECT_EQ(often.pos.y, once.pos.y);
    }
    EXPECT_EQ(recording.placeAt(1, 2).x, once.pos.x);
}

TEST(SteeredRecordingTest, AFigureWithAPlaceIsThereAndTheOthersAreWhereTheyWereRecorded)
{
    const auto played = recordingOf(2, [](int, int) { return Vec3(1, 1, 7); });
    SteeredRecording recording(*played);
    for (int i = 0; i < 3; ++i) {
        recording.write(1, {Place{0.25, 0.5}, std::nullopt, Place{0.5, 0.75}});
        EXPECT_EQ(played->sensorDataList[1]->pos[1]->x, 1);
        EXPECT_EQ(played->sensorDataList[2]->pos[1]->z, 7);
        for (const int k : {0, 2}) {
            Sensor sensor;
            sensor.sensorId = k;
            update(sensor, *played, 1);
            EXPECT_FLOAT_EQ(sensor.pos.x, k == 0 ? 0.25F : 0.5F);
            EXPECT_FLOAT_EQ(sensor.pos.y, k == 0 ? 0.5F : 0.75F);
        }
    }
    recording.write(1, {});
    EXPECT_EQ(played->sensorDataList[0]->pos[1]->x, 1);
    EXPECT_EQ(played->sensorDataList[0]->pos[0]->x, 1) << "another step";
}

TEST(SteeredRecordingTest, TheStepBeyondTheLastCountsAsTheLast)
{
    const auto played = recordingOf(3, [](int, int) { return Vec3(); });
    const SteeredRecording recording(*played);
    EXPECT_EQ(recording.steps(), 3);
    EXPECT_EQ(recording.nearestStep(3), 2);
    EXPECT_EQ(recording.nearestStep(2), 2);
    EXPECT_EQ(recording.nearestStep(-1), 0);
}

TEST(SteeredRecordingTest, ARecordingWithoutARecordForEachFigureIsRefused)
{
    const auto two = recordingOf(3, [](int, int) { return Vec3(); });
    delete two->sensorDataList.back();
    two->sensorDataList.pop_back();
    EXPECT_THROW(SteeredRecording{*two}, std::runtime_error);
    const auto none = recordingOf(0, [](int, int) { return Vec3(); });
    EXPECT_THROW(SteeredRecording{*none}, std::runtime_error);
}
