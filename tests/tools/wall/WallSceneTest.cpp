#include "WallScene.h"

#include "LedFigures.h"
#include "NullGL.h"

#include <GL/glew.h>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

/// The scene of a tile in the media folder that the build makes, with an OpenGL that draws nothing.

namespace {

constexpr unsigned SEED = 20;
constexpr int FRAMES = 40;
constexpr Stage::Voice VOICE = {4 * 8000, 8000};

/// Two tiles of 100 by 200 pixels beside each other.
WallLayout twoTiles(const std::string& cameras = "0")
{
    WallFiles files;
    files.description = "Cluster TileMap 2 1 Mullions 0 0 Nodes 1 Node Hostname reef Windows 2 "
                        "Map 0 0 Location 0 0 100 200 Cameras " +
                        cameras + " Map 1 0 Location 100 0 100 200 Cameras " + cameras;
    WallLayout layout;
    EXPECT_FALSE(layOut(files, layout).has_value());
    return layout;
}

class WallSceneTest : public testing::Test {
protected:
    WallSceneTest() : before(std::filesystem::current_path())
    {
        std::filesystem::current_path(KELPIX_MEDIA_DIR);
        nullgl::reset();
        testing::internal::CaptureStdout(); // the scene says what it loads
    }
    ~WallSceneTest() override
    {
        testing::internal::GetCapturedStdout();
        std::filesystem::current_path(before);
    }

    /// The states after each frame from a beginning on.
    static std::vector<wall::State> statesOf(wall::WallScene& scene, unsigned seed)
    {
        scene.begin(seed);
        std::vector<wall::State> states;
        for (int i = 0; i < FRAMES; ++i) {
            scene.update(scene.nextStep());
            scene.draw();
            states.push_back(scene.state());
        }
        return states;
    }

private:
    std::filesystem::path before;
};

} // namespace

TEST_F(WallSceneTest, AllTilesHaveTheStateOfTheWholeScene)
{
    Stage stage(200, 200, SEED, VOICE);
    std::vector<std::uint64_t> expected;
    for (int i = 0; i < FRAMES; ++i) {
        stage.update();
        stage.draw();
        expected.push_back(stage.hash().whole());
    }
    const WallLayout layout = twoTiles();
    for (const WallTile& tile : layout.tiles) {
        nullgl::reset();
        wall::WallScene scene(layout, tile, VOICE);
        scene.begin(SEED);
        for (const std::uint64_t state : expected) {
            static_cast<void>(std::rand()); // somebody else's
            scene.update(scene.nextStep());
            scene.draw();
            ASSERT_EQ(scene.hash().whole(), state);
        }
    }
}

TEST_F(WallSceneTest, ABeginningIsThatOfANewProcessAndLeavesNoGLObjects)
{
    const WallLayout layout = twoTiles();
    wall::WallScene scene(layout, layout.tiles[1], VOICE);
    const auto first = statesOf(scene, SEED);
    const std::size_t lists = nullgl::lists();
    const std::size_t textures = nullgl::textures();
    // Their names are free again, and given before higher ones.
    glDeleteLists(3, 1);
    const GLuint third = 3;
    glDeleteTextures(1, &third);
    EXPECT_NE(statesOf(scene, SEED + 1), first);
    EXPECT_EQ(statesOf(scene, SEED), first);
    EXPECT_EQ(nullgl::lists(), lists);
    EXPECT_EQ(nullgl::textures(), textures);
}

TEST_F(WallSceneTest, FiguresAreLedOnAllTilesAsInTheWholeScene)
{
    const auto posesAt = [](int frame) {
        return Poses{Place{static_cast<double>(0.25F + 0.001F * static_cast<float>(frame)), 0.5}};
    };
    Stage stage(200, 200, SEED, VOICE);
    SteeredRecording recording(*stage.recording);
    std::vector<std::uint64_t> expected;
    for (int i = 0; i < FRAMES; ++i) {
        recording.write(i / 3, posesAt(i)); // each step three times
        stage.update(i / 3);
        stage.draw();
        expected.push_back(stage.hash().whole());
    }
    const WallLayout layout = twoTiles();
    for (const WallTile& tile : layout.tiles) {
        nullgl::reset();
        wall::WallScene scene(layout, tile, VOICE);
        scene.begin(SEED);
        for (int i = 0; i < FRAMES; ++i) {
            wall::Lead lead; // in which they travel
            wall::setPoses(lead, posesAt(i));
            scene.update(i / 3, wall::posesOf(lead));
            scene.draw();
            ASSERT_EQ(scene.hash().whole(), expected[static_cast<std::size_t>(i)]) << i;
        }
    }
}

TEST_F(WallSceneTest, ThePictureIsThatOfTheWholeWall)
{
    WallLayout layout = twoTiles();
    layout.width = 400; // twice as wide as high
    wall::WallScene scene(layout, layout.tiles[0], VOICE);
    scene.begin(SEED);
    const auto place = scene.view().placeAt(0.6, 0.5);
    ASSERT_TRUE(place);
    EXPECT_NEAR(place->x, 0.5 + 0.2 * 0.9622504, 1e-6);
    layout.fit = Fit::cover; // enlarged to that width
    const auto covered = scene.view().placeAt(0.6, 0.75);
    ASSERT_TRUE(covered);
    EXPECT_NEAR(covered->x, 0.5 + 0.1 * 0.9622504, 1e-6);
    EXPECT_NEAR(covered->y, 0.5 + 0.125 * 0.9622504, 1e-6);
}

TEST_F(WallSceneTest, InputFindsTheViewportOfTheWholeWall)
{
    const WallLayout layout = twoTiles();
    wall::WallScene scene(layout, layout.tiles[1], VOICE);
    scene.begin(SEED);
    scene.update(0);
    scene.draw();
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 200, 200}));
}

TEST_F(WallSceneTest, WhatTheCamerasLeaveOfTheWindowIsCleared)
{
    const auto clearsIn = [](const WallLayout& layout) {
        wall::WallScene scene(layout, layout.tiles[0], VOICE);
        scene.begin(SEED);
        scene.update(0);
        nullgl::resetCalls();
        scene.draw();
        return nullgl::calls("glClear");
    };
    EXPECT_EQ(clearsIn(twoTiles()), 1);
    EXPECT_EQ(clearsIn(twoTiles("1 Rectangle 0 0 0.5 1 Offset 0 0")), 2);
}
