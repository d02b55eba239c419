#include "WallScene.h"

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
