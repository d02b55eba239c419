#include "Stage.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "MoCap.h"
#include "NullGL.h"
#include "ReferenceMatchers.h"
#include "ReferenceScene.h"
#include "Sensor.h"
#include "SensorRep.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>

/// The stage in the media folder that the build makes, with an OpenGL that draws nothing.

namespace {

constexpr unsigned SEED = 20;
constexpr Stage::Voice SHORT_VOICE = {4 * 8000, 8000}; // four seconds
constexpr Stage::Voice SILENT = {0, 0};

std::unique_ptr<Stage> newStage(unsigned seed, Stage::Voice voice)
{
    testing::internal::CaptureStdout();
    auto stage = std::make_unique<Stage>(740, 740, seed, voice);
    testing::internal::GetCapturedStdout();
    return stage;
}

/// Draws a frame; the first ones report what they load.
void draw(Stage& stage)
{
    testing::internal::CaptureStdout();
    stage.draw();
    testing::internal::GetCapturedStdout();
}

/// The recording that is shown, the first of the media's index, as its numbers stand there.
reference::Recording shownRecording()
{
    std::ifstream index("data/mocap.txt");
    std::string word;
    std::string path;
    index >> word >> word >> word >> path;
    reference::Recording recording;
    std::ifstream file(path);
    double time = 0;
    while (file >> time) {
        for (std::vector<reference::Triple>& series : recording) {
            double n[6] = {};
            for (double& number : n) {
                file >> number;
            }
            series.push_back({Single(n[0]), Single(n[1]), Single(n[2])});
        }
        for (int ignored = 0; ignored < 6; ++ignored) {
            file >> word;
        }
    }
    return recording;
}

/// Every number of the scene that moves, in the order of the nodes.
std::vector<unsigned> everythingIn(const Stage& stage)
{
    std::vector<unsigned> all;
    const auto add = [&all](const float* numbers, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            all.push_back(bits(numbers[i]));
        }
    };
    for (Node* child : stage.water->children) {
        add(child->transformmat, 16);
        add(child->worldmat, 16);
        for (Node* part : child->children) {
            add(part->transformmat, 16);
            add(part->worldmat, 16);
        }
    }
    return all;
}

std::vector<unsigned> played(unsigned seed)
{
    nullgl::reset();
    const auto stage = newStage(seed, SHORT_VOICE);
    for (int step = 0; step < 300; ++step) {
        stage->update();
        draw(*stage);
    }
    return everythingIn(*stage);
}

class StageTest : public testing::Test {
protected:
    StageTest() : before(std::filesystem::current_path())
    {
        std::filesystem::current_path(KELPIX_MEDIA_DIR);
        nullgl::reset();
    }
    ~StageTest() override { std::filesystem::current_path(before); }

private:
    std::filesystem::path before;
};

TEST_F(StageTest, TheSameSeedGivesTheSameSceneToTheBit)
{
    const std::vector<unsigned> first = played(SEED);
    EXPECT_GT(first.size(), 100u * 64);
    EXPECT_EQ(played(SEED), first);
    EXPECT_NE(played(SEED + 1), first);
}

/// Compares what moves; the first difference fails the test.
void compare(const Stage& stage, reference::Scene& plain)
{
    ASSERT_EQ(emitt, plain.sinceEmission);
    ASSERT_EQ(stage.scene.graph.node_count, plain.visibleNodes);
    ASSERT_EQ(stage.water->children.size(), plain.children.size());
    auto node = stage.water->children.begin();
    for (const reference::Scene::Child& expected : plain.children) {
        if (const auto* boid = std::get_if<std::unique_ptr<reference::Boid>>(&expected)) {
            auto* const real = static_cast<Boid*>(*node);
            ASSERT_EQ(real->getId(), (*boid)->id);
            ASSERT_THAT(real->vel, SameTriple((*boid)->vel));
            ASSERT_THAT(real->transformmat, SameMatrix((*boid)->transform));
            ASSERT_THAT(real->boider->transformmat, SameMatrix((*boid)->sprite));
        } else {
            const auto& sensor = *std::get<std::unique_ptr<reference::Sensor>>(expected);
            auto* const real = static_cast<Sensor*>(*node);
            ASSERT_EQ(real->sensorId, sensor.id);
            ASSERT_THAT(real->transformmat, SameMatrix(sensor.transform));
            ASSERT_THAT(real->rep->transformmat, SameMatrix(sensor.rep.transform));
            ASSERT_EQ(real->rep->counter, sensor.rep.counter);
        }
        ++node;
    }
    for (std::size_t cell = 0; cell < plain.cells.size(); ++cell) {
        ASSERT_EQ(stage.water->bucketIndex.index[cell]->boidList.size(),
                  plain.cells[cell].slots.size());
    }
    ASSERT_EQ(std::rand(), plain.random.next());
}

TEST_F(StageTest, TheSceneIsThatOfTheReference)
{
    const auto stage = newStage(SEED, SHORT_VOICE);
    reference::Scene plain(SEED, shownRecording());
    plain.world = reference::product(plain.world, reference::scaling(1.2f, 1.2f, 1.0f));
    plain.world = reference::product(plain.world, reference::translation(-0.5f, -0.5f, 0.0f));
    ASSERT_GT(stage->recording->numSteps, 1000);
    draw(*stage);
    plain.draw();
    int reaped = 0;
    int emitted = 0;
    for (int step = 0; step < 400; ++step) {
        SCOPED_TRACE(testing::Message() << "step " << step);
        // Ten seconds: the voice plays for the first four of them.
        const int tick = step * 9 / 4;
        const float fraction = tick < 360 ? static_cast<float>(tick * 8000 / 90) / 32000.0f : 0;
        const float position = static_cast<float>(stage->recording->numSteps) * fraction;
        stage->update();
        plain.update(static_cast<int>(std::ceil(static_cast<double>(position))));
        draw(*stage);
        plain.draw();
        reaped += plain.reapedBoids;
        emitted += plain.emittedBubbles;
        if (step % 20 == 0 || step > 390) {
            ASSERT_NO_FATAL_FAILURE(compare(*stage, plain));
        }
    }
    EXPECT_EQ(emitted, 3 * (400 / 15));
    EXPECT_GT(reaped, 5);
}

TEST_F(StageTest, ABubbleComesWithTheSixteenthFrameOfEachScene)
{
    for (int scene = 0; scene < 2; ++scene) {
        const auto stage = newStage(SEED, SILENT);
        const std::size_t atFirst = stage->water->children.size();
        for (int frame = 1; frame <= 15; ++frame) {
            draw(*stage);
        }
        EXPECT_EQ(stage->water->children.size(), atFirst);
        draw(*stage);
        EXPECT_EQ(stage->water->children.size(), atFirst + 3);
    }
}

TEST_F(StageTest, TheRecordingFollowsTheLastOfNinetyTicksASecond)
{
    // A voice of one sample a tick, so that the position counts ticks.
    const auto stage = newStage(SEED, {100, Stage::TICKS_PER_SECOND});
    const int numSteps = stage->recording->numSteps;
    // An update comes every two and a quarter ticks.
    for (const int tick : {0, 2, 4, 6, 9, 11, 13, 15, 18}) {
        stage->update();
        EXPECT_EQ(stage->recording->step,
                  MoCap::stepAt(numSteps, static_cast<float>(tick) / 100.0f));
    }
}

TEST_F(StageTest, WithoutAVoiceTheRecordingRests)
{
    const auto stage = newStage(SEED, SILENT);
    for (int step = 0; step < 10; ++step) {
        stage->update();
        EXPECT_EQ(stage->recording->step, 0);
    }
}

TEST_F(StageTest, TheVoiceIsPlayedOnce)
{
    // A tick is 490 samples.
    constexpr Stage::Voice minute = {60 * 44100, 44100};
    EXPECT_EQ(Stage::voicePosition(minute, 0), 0);
    EXPECT_EQ(Stage::voicePosition(minute, 30 * 90), 0.5f);
    EXPECT_EQ(Stage::voicePosition(minute, 60 * 90 - 1), (2646000.0f - 490) / 2646000.0f);
    EXPECT_EQ(Stage::voicePosition(minute, 60 * 90), 0);
    EXPECT_EQ(Stage::voicePosition(minute, 72L * 3600 * 90), 0);

    // The end between two ticks: 490 samples are played at tick 1.
    EXPECT_EQ(Stage::voicePosition({491, 44100}, 1), 490.0f / 491.0f);
    EXPECT_EQ(Stage::voicePosition({490, 44100}, 1), 0);

    // A tick of 88 and 8 ninths samples has played 88.
    EXPECT_EQ(Stage::voicePosition({1000, 8000}, 1), 0.088f);

    EXPECT_EQ(Stage::voicePosition(SILENT, 0), 0);
    EXPECT_EQ(Stage::voicePosition(SILENT, 1000), 0);
}

} // namespace
