#include "Take.h"

#include "Environment.h"
#include "LiveScene.h"
#include "MoCap.h"
#include "NullGL.h"
#include "Sensor.h"
#include "TakeFiles.h"
#include "TestRecording.h"
#include "WaterView.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

/// Takes, read again as the scene reads its recordings.

namespace {

namespace fs = std::filesystem;

constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

class TakeTest : public testing::Test {
protected:
    TakeTest() : home(fs::current_path()), folder(fs::temp_directory_path() / "kelpix-takes")
    {
        fs::remove_all(folder);
        fs::create_directory(folder);
    }
    ~TakeTest() override
    {
        fs::current_path(home);
        fs::remove_all(folder);
    }

    /// Reads a take as the recording of a folder.
    void read(const std::string& text, MoCap& recording) const
    {
        std::ofstream(folder / "dance.txt") << text;
        const fs::path index = folder / "mocap.txt";
        std::ofstream(index) << "MOCAP\n1 3\n" << (folder / "dance.txt").string() << "\n";
        testing::internal::CaptureStdout(); // it says what it reads
        recording.read(index.c_str());
        testing::internal::GetCapturedStdout();
    }

    const WaterView view{IDENTITY, IDENTITY, IDENTITY, 1};
    fs::path home;
    fs::path folder;
};

/// Three figures that go to the right, each by 0.001 of a unit of the recording in a step.
std::unique_ptr<MoCap> movingRecording(int steps)
{
    return recordingOf(steps, [](int figure, int step) {
        return Vec3(0.001F * static_cast<float>(step), 1.25F, static_cast<float>(figure));
    });
}

} // namespace

TEST_F(TakeTest, AFigureThatNobodyLedIsAsRecorded)
{
    const auto played = movingRecording(20);
    const SteeredRecording recording(*played);
    live::Take take(recording);
    take.note(3, {});
    take.note(5, {std::nullopt, Place{0.5, 0.5}, std::nullopt});
    EXPECT_TRUE(take.isLed());
    MoCap again;
    read(take.text(*played), again);
    ASSERT_EQ(again.numSteps, 20);
    for (std::size_t k : {0U, 2U}) {
        for (std::size_t i = 0; i < 20; ++i) {
            EXPECT_EQ(again.sensorDataList[k]->pos[i]->x, 0.001F * static_cast<float>(i));
            EXPECT_EQ(again.sensorDataList[k]->pos[i]->y, 1.25F);
            EXPECT_EQ(again.sensorDataList[k]->pos[i]->z, static_cast<float>(k));
            EXPECT_EQ(again.sensorDataList[k]->ori[i]->z, static_cast<float>(k));
        }
    }
    EXPECT_NEAR(again.sensorDataList[0]->timestep[9], 0.1, 1e-6);
}

TEST_F(TakeTest, BetweenTwoUpdatesAFigureGoesStraight)
{
    const auto played = movingRecording(20);
    const SteeredRecording recording(*played);
    live::Take take(recording);
    // Figure 1 is at (0.45 x + 0.55, 0.45 y - 0.1): these are x = 0, 0.2 and 0.3.
    take.note(4, {std::nullopt, Place{0.55, 0.35}, std::nullopt});
    take.note(6, {std::nullopt, Place{0.64, 0.35}, std::nullopt});
    take.note(6, {std::nullopt, Place{0.64, 0.35}, std::nullopt});
    take.note(10, {std::nullopt, Place{0.685, 0.80}, std::nullopt});
    MoCap again;
    read(take.text(*played), again);
    const auto& path = again.sensorDataList[1]->pos;
    EXPECT_NEAR(path[4]->x, 0.0, 1e-6);
    EXPECT_NEAR(path[5]->x, 0.1, 1e-6);
    EXPECT_NEAR(path[6]->x, 0.2, 1e-6);
    EXPECT_NEAR(path[7]->x, 0.225, 1e-6);
    EXPECT_NEAR(path[8]->y, 1.5, 1e-6);
    EXPECT_NEAR(path[10]->y, 2.0, 1e-6);
    EXPECT_FLOAT_EQ(path[3]->x, 0.003F) << "before it";
    EXPECT_FLOAT_EQ(path[11]->x, 0.011F) << "after it";
}

TEST_F(TakeTest, AFigureThatIsLedAtTheEndGoesBackSmoothly)
{
    const auto played = movingRecording(400);
    const SteeredRecording recording(*played);
    Steering steering;
    live::Take take(recording);
    int step = 0;
    for (; step < 90; step += 2) {
        steering.lead(1, 0.9, 0.9);
        take.note(step, steering.next(recording, step, view));
    }
    take.end(steering, view);
    MoCap again;
    read(take.text(*played), again);
    const auto& path = again.sensorDataList[1]->pos;
    for (std::size_t i = 1; i < path.size(); ++i) {
        // 0.012 of the picture an update, in units of the recording.
        const Vec3 way = *path[i] - *path[i - 1];
        EXPECT_LE(std::hypot(way.x, way.y), 0.0267F) << i;
    }
    EXPECT_EQ(path[399]->x, 0.001F * 399);
}

TEST_F(TakeTest, AShowingThatWasNotLedIsNoTake)
{
    const auto played = movingRecording(20);
    const SteeredRecording recording(*played);
    live::Take take(recording);
    take.note(0, {});
    EXPECT_FALSE(take.isLed());
}

TEST_F(TakeTest, PlayedAgainItIsWhatWasSeen)
{
    fs::current_path(KELPIX_MEDIA_DIR);
    nullgl::reset();
    live::LiveScene scene;
    testing::internal::CaptureStdout(); // it says what it loads
    scene.begin(200, 200, 4);
    testing::internal::GetCapturedStdout();
    live::Take take(scene.recorded());
    struct Seen {
        int step;
        std::array<Vec3, 3> places;
    };
    std::vector<Seen> seen;
    const auto place = [](const Stage& stage, std::size_t k) {
        const float* const m = stage.water->sensorList[k]->transformmat;
        return Vec3(m[12], m[13], 0);
    };
    for (int i = 0; i < 200; ++i) {
        osc::Command command;
        command.kind = osc::Command::Kind::FIGURE;
        command.figure = i / 90;
        command.x = 0.5F + 0.4F * std::cos(static_cast<float>(i) / 15);
        command.y = 0.5F + 0.4F * std::sin(static_cast<float>(i) / 15);
        if (i % 3 == 0 && i < 150) {
            scene.obey(command);
        }
        scene.update(2000 + 9 * i / 4);
        take.note(scene.step(), scene.poses());
        seen.push_back(
            {scene.step(),
             {place(scene.stage(), 0), place(scene.stage(), 1), place(scene.stage(), 2)}});
    }
    take.end(scene.figures(), scene.view());

    MoCap again;
    read(take.text(*scene.stage().recording), again);
    ASSERT_EQ(again.numSteps, scene.numSteps() + 1) << "one more than the rehearsal";
    std::array<Sensor, 3> sensors;
    for (std::size_t i = 1; i < seen.size(); ++i) { // in the first update figures fly in
        again.step = seen[i].step;
        for (std::size_t k = 0; k < 3; ++k) {
            sensors[k].mocap = &again;
            sensors[k].sensorId = static_cast<int>(k);
            sensors[k].doupdate();
            EXPECT_EQ(sensors[k].pos.x, seen[i].places[k].x) << i;
            EXPECT_EQ(sensors[k].pos.y, seen[i].places[k].y) << i;
        }
    }
}

TEST_F(TakeTest, EachTakeHasAFileOfItsOwn)
{
    const fs::path first = folder / "my.dance.txt";
    live::TakeFiles files(first, false);
    EXPECT_FALSE(fs::exists(first)) << "there is no take yet";
    EXPECT_EQ(files.write("one"), first);
    EXPECT_EQ(files.write("two"), folder / "my.dance-2.txt");
    std::ofstream(folder / "my.dance-3.txt") << "another program's";
    EXPECT_EQ(files.write("four"), folder / "my.dance-4.txt");
    EXPECT_THROW(live::TakeFiles(first, false), std::runtime_error);
    EXPECT_THROW(live::TakeFiles(folder / "none" / "dance.txt", false), std::runtime_error);

    live::TakeFiles forced(first, true);
    EXPECT_TRUE(fs::exists(first)) << "until there is a take";
    EXPECT_EQ(forced.write("anew"), first);
    EXPECT_EQ(forced.write("more"), folder / "my.dance-5.txt");
    std::string text;
    std::ifstream(first) >> text;
    EXPECT_EQ(text, "anew");
}
