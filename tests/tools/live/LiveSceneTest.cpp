#include "LiveScene.h"

#include "Environment.h"
#include "MoCap.h"
#include "NullGL.h"
#include "RootNode.h"
#include "Sensor.h"

#include <GL/glew.h>
#include <GL/glu.h>
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

/// The scene that follows messages, in the media folder that the build makes, with an OpenGL that
/// draws nothing.

namespace {

using Kind = osc::Command::Kind;

constexpr unsigned SEED = 20;
constexpr int WIDTH = 400;
constexpr int HEIGHT = 300;
constexpr double PIXEL = 1.0 / WIDTH;

osc::Command figure(int number, float x, float y)
{
    osc::Command command;
    command.kind = Kind::FIGURE;
    command.figure = number;
    command.x = x;
    command.y = y;
    return command;
}

osc::Command command(Kind kind, float x = 0, float y = 0)
{
    osc::Command result = figure(0, x, y);
    result.kind = kind;
    return result;
}

class LiveSceneTest : public testing::Test {
protected:
    LiveSceneTest() : before(std::filesystem::current_path())
    {
        std::filesystem::current_path(KELPIX_MEDIA_DIR);
        nullgl::reset();
        begin();
    }
    ~LiveSceneTest() override { std::filesystem::current_path(before); }

    void begin()
    {
        testing::internal::CaptureStdout(); // it says what it loads
        scene.begin(WIDTH, HEIGHT, SEED);
        scene.draw();
        testing::internal::GetCapturedStdout();
    }

    /// \param step  in the middle of the dance
    void play(int frames, int step = 3000)
    {
        for (int i = 0; i < frames; ++i) {
            scene.update(step);
            scene.draw();
        }
    }

    const Sensor& sensor(std::size_t number) const
    {
        return *static_cast<const Sensor*>(scene.stage().water->sensorList[number]);
    }

    /// Where OpenGL drew a figure, in the picture.
    Place drawnAt(std::size_t number) const
    {
        double model[16];
        const float* const matrix = sensor(number).worldmat;
        std::copy(matrix, matrix + 16, model);
        double projection[16];
        glGetDoublev(GL_PROJECTION_MATRIX, projection);
        const GLint viewport[4] = {0, 0, 1, 1};
        double x = 0;
        double y = 0;
        double z = 0;
        gluProject(0, 0, 0, model, projection, viewport, &x, &y, &z);
        return {x, y};
    }

    void expectAt(std::size_t number, double x, double y) const
    {
        const Place drawn = drawnAt(number);
        EXPECT_NEAR(drawn.x, x, PIXEL / 20) << number;
        EXPECT_NEAR(drawn.y, y, PIXEL / 20) << number;
        const auto told = scene.seenAt(static_cast<int>(number));
        ASSERT_TRUE(told);
        EXPECT_NEAR(told->x, drawn.x, PIXEL / 20);
        EXPECT_NEAR(told->y, drawn.y, PIXEL / 20);
    }

    live::LiveScene scene;

private:
    std::filesystem::path before;
};

} // namespace

TEST_F(LiveSceneTest, WithoutMessagesItIsTheSceneToTheBit)
{
    testing::internal::CaptureStdout();
    Stage stage(WIDTH, HEIGHT, SEED, {});
    stage.draw();
    testing::internal::GetCapturedStdout();
    std::vector<StateHash> expected;
    constexpr int FRAMES = 30;
    for (int i = 0; i < FRAMES; ++i) {
        stage.update(1000 + 3 * i);
        stage.draw();
        expected.push_back(stage.hash());
    }
    begin();
    for (int i = 0; i < FRAMES; ++i) {
        scene.update(1000 + 3 * i);
        scene.draw();
        EXPECT_EQ(scene.hash(), expected[static_cast<std::size_t>(i)]) << i;
    }
}

TEST_F(LiveSceneTest, FiguresAreDrawnWhereTheyWereSentInEveryView)
{
    play(2);
    const auto send = [this] {
        scene.obey(figure(0, 0.25F, 0.1F));
        scene.obey(figure(1, 0.75F, 0.9F));
        scene.obey(figure(2, 0.5F, 0.5F));
    };
    const auto expectThere = [this] {
        expectAt(0, 0.25, 0.1);
        expectAt(1, 0.75, 0.9);
        expectAt(2, 0.5, 0.5);
    };
    send();
    play(75);
    expectThere();
    scene.obey(command(Kind::ZOOM, 2));
    scene.obey(command(Kind::MOVE, 0.1F, -0.05F));
    scene.obey(command(Kind::TURN, 20, -15));
    send();
    play(75);
    expectThere();
    scene.resize(300, 400);
    send();
    play(75);
    expectThere();
}

TEST_F(LiveSceneTest, TheNextFrameShowsAMessage)
{
    play(3);
    const Place before = drawnAt(1);
    scene.obey(figure(1, 0.9F, 0.9F));
    play(1);
    const Place after = drawnAt(1);
    EXPECT_GT(std::hypot(after.x - before.x, after.y - before.y), PIXEL);
}

TEST_F(LiveSceneTest, NoMessagesBreakTheTentaclesOrLeaveANodeBehind)
{
    play(2);
    for (int i = 0; i < 60; ++i) {
        const float x = i % 2 == 0 ? 0.0F : 1.0F;
        for (int k = 0; k < 3; ++k) {
            scene.obey(figure(k, x, 1 - x));
        }
        play(1, 3000 + i);
        for (std::size_t k = 0; k < 3; ++k) {
            const Sensor& led = sensor(k);
            EXPECT_LE(std::hypot(led.vel.x, led.vel.y), 0.01201F);
            EXPECT_EQ(led.pos.x, led.transformmat[12]);
            EXPECT_EQ(led.pos.y, led.transformmat[13]);
        }
    }
}

TEST_F(LiveSceneTest, BeginningAnewGivesTheFirstSceneWhateverWasDone)
{
    play(40);
    const StateHash first = scene.hash();
    scene.obey(figure(1, 0.9F, 0.9F));
    scene.obey(command(Kind::ZOOM, 3));
    play(20);
    EXPECT_NE(scene.hash(), first);
    begin();
    play(40);
    EXPECT_EQ(scene.hash(), first);
}

TEST_F(LiveSceneTest, TheStepBeyondTheLastDoesNotEndTheScene)
{
    play(1, scene.numSteps() + 10);
    EXPECT_EQ(scene.step(), scene.recorded().steps() - 1);
}

TEST_F(LiveSceneTest, AClickIsThatOfTheWindow)
{
    play(1);
    scene.obey(command(Kind::CLICK, 0.25F, 0.75F));
    EXPECT_EQ(scene.stage().window.MOUSE[0], 100); // of 399
    EXPECT_EQ(scene.stage().window.MOUSE[1], 75);  // of 299, from the top
}
