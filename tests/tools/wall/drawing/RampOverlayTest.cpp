#include "RampOverlay.h"

#include "TilePictures.h"
#include "Walls.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class RampOverlayTest : public GLTest {
protected:
    /// A tile's window full of one color, under the tile's ramps.
    static TilePicture overlay(const WallTile& tile, float red, float green, float blue)
    {
        glClearColor(red, green, blue, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(0, 0, 0, 0);
        RampOverlay ramps(tile);
        ramps.draw();
        TilePicture picture = readTile(tile);
        ramps.clean();
        return picture;
    }

    /// The light of all tiles of a wall of white windows, for each pixel of the wall.
    static std::vector<double> lightOf(const WallLayout& wall)
    {
        std::vector<double> light(static_cast<std::size_t>(wall.width) *
                                  static_cast<std::size_t>(wall.height));
        for (const WallTile& tile : wall.tiles) {
            const TilePicture picture = overlay(tile, 1, 1, 1);
            for (int y = 0; y < picture.height; ++y) {
                for (int x = 0; x < picture.width; ++x) {
                    const int at = (tile.wall.y + y) * wall.width + tile.wall.x + x;
                    light[static_cast<std::size_t>(at)] += std::pow(
                        picture.at(x, y)[0] / 255.0, static_cast<double>(tile.blend.gamma));
                }
            }
        }
        return light;
    }
};

TEST_F(RampOverlayTest, NeighborsAddUpToEvenLight)
{
    for (const char* gamma : {"1", "1.8", "2.2", "3"}) {
        // Three projectors beside each other, which overlap by 60 pixels.
        const std::string more = std::string("Wall Map 0 0 Blend 0 60 0 0 ") + gamma +
                                 " Map 1 0 Blend 60 60 0 0 " + gamma + " Map 2 0 Blend 60 0 0 0 " +
                                 gamma;
        const std::vector<double> light =
            lightOf(layoutOf(describeGrid(3, 1, 240, 20, "-0.25 0"), more));
        ASSERT_EQ(light.size(), 600u * 20);
        const auto [least, most] = std::minmax_element(light.begin(), light.end());
        EXPECT_GE(*least, 1 - 2 / 255.0) << gamma;
        EXPECT_LE(*most, 1 + 2 / 255.0) << gamma;
    }
}

TEST_F(RampOverlayTest, FourTilesAddUpWhereTheyMeet)
{
    // Overlaps of 50 and 45 pixels.
    const WallLayout wall = layoutOf(describeGrid(2, 2, 200, 180, "-0.25 -0.25"));
    ASSERT_EQ(wall.width, 350);
    ASSERT_EQ(wall.height, 315);
    const std::vector<double> light = lightOf(wall);
    const auto [least, most] = std::minmax_element(light.begin(), light.end());
    EXPECT_GE(*least, 1 - 2 / 255.0);
    EXPECT_LE(*most, 1 + 2 / 255.0);
}

TEST_F(RampOverlayTest, EachPixelOfARampHasItsFactor)
{
    WallTile tile;
    tile.desktop = {0, 0, 20, 10};
    tile.blend = {2, 1, 1, 0, 1};
    const TilePicture picture = overlay(tile, 1, 1, 1);
    // Columns 1/8, 7/8, then 1, and 1/2 at the right; the lowest row has half of that.
    EXPECT_THAT(picture.at(0, 9), ElementsAre(32, 32, 32));
    EXPECT_THAT(picture.at(1, 9), ElementsAre(223, 223, 223));
    EXPECT_THAT(picture.at(2, 9), ElementsAre(255, 255, 255));
    EXPECT_THAT(picture.at(18, 1), ElementsAre(255, 255, 255));
    EXPECT_THAT(picture.at(19, 1), ElementsAre(128, 128, 128));
    EXPECT_THAT(picture.at(0, 0), ElementsAre(16, 16, 16));
    EXPECT_THAT(picture.at(10, 0), ElementsAre(128, 128, 128));
    EXPECT_THAT(picture.at(19, 0), ElementsAre(64, 64, 64));
}

TEST_F(RampOverlayTest, APictureIsMultiplied)
{
    WallTile tile;
    tile.desktop = {0, 0, 20, 10};
    tile.gain = {1, 0.5F, 0.25F};
    tile.blend.gamma = 1;
    // 204 * 1, 102 * 128 / 255 = 51.2, 51 * 64 / 255 = 12.8
    EXPECT_THAT(overlay(tile, 0.8F, 0.4F, 0.2F).at(7, 3), ElementsAre(204, 51, 13));
}

TEST_F(RampOverlayTest, WithoutRampsNothingIsDrawn)
{
    WallTile tile;
    tile.desktop = {0, 0, 20, 10};
    RampOverlay ramps(tile);
    EXPECT_FALSE(ramps.isNeeded());
    EXPECT_TRUE(Feedback::of([&] { ramps.draw(); }).empty());
    tile.blend.left = 1;
    EXPECT_TRUE(RampOverlay(tile).isNeeded());
}

TEST_F(RampOverlayTest, TheStateOfTheSceneStays)
{
    WallTile tile;
    tile.desktop = {0, 0, 20, 10};
    tile.blend = {5, 0, 0, 0, 2.2F};
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 2, 3, 4);
    glViewport(-5, -6, 700, 600);
    glBlendFunc(GL_ONE, GL_ONE);
    glColor4f(0.25F, 0.5F, 0.75F, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
    glMatrixMode(GL_PROJECTION);
    glScalef(2, 3, 4);
    glMatrixMode(GL_TEXTURE);
    glTranslatef(1, 2, 3);
    const std::vector<float> projection = getMatrix(GL_PROJECTION_MATRIX);
    const std::vector<float> moved = getMatrix(GL_TEXTURE_MATRIX);

    RampOverlay ramps(tile);
    ramps.draw();
    ramps.draw();

    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(texture));
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_DECAL);
    EXPECT_TRUE(isEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(isEnabled(GL_LIGHTING));
    EXPECT_TRUE(isEnabled(GL_SCISSOR_TEST));
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    GLint box[4] = {};
    glGetIntegerv(GL_SCISSOR_BOX, box);
    EXPECT_THAT(box, ElementsAre(1, 2, 3, 4));
    glGetIntegerv(GL_VIEWPORT, box);
    EXPECT_THAT(box, ElementsAre(-5, -6, 700, 600));
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_ONE);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE);
    float color[4] = {};
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_THAT(color, ElementsAre(0.25F, 0.5F, 0.75F, 1));
    EXPECT_EQ(getInteger(GL_UNPACK_ALIGNMENT), 2);
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_TEXTURE);
    EXPECT_EQ(getMatrix(GL_PROJECTION_MATRIX), projection);
    EXPECT_EQ(getMatrix(GL_TEXTURE_MATRIX), moved);
    for (const GLenum depth : {GL_ATTRIB_STACK_DEPTH, GL_CLIENT_ATTRIB_STACK_DEPTH}) {
        EXPECT_EQ(getInteger(depth), 0);
    }
    for (const GLenum depth :
         {GL_MODELVIEW_STACK_DEPTH, GL_PROJECTION_STACK_DEPTH, GL_TEXTURE_STACK_DEPTH}) {
        EXPECT_EQ(getInteger(depth), 1);
    }

    ramps.clean();
    glDeleteTextures(1, &texture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

TEST_F(RampOverlayTest, WhatTheSceneSetsDoesNotReachTheRamps)
{
    WallTile tile;
    tile.desktop = {0, 0, 20, 10};
    tile.gain = {0.5F, 0.5F, 0.5F};
    tile.blend.gamma = 1;
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 5, 5);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_NEVER);
    glEnable(GL_LIGHTING);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT_AND_BACK);
    glColorMask(GL_TRUE, GL_FALSE, GL_FALSE, GL_FALSE);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(5, 5, 5);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
    RampOverlay ramps(tile);
    ramps.draw();
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthFunc(GL_LESS);
    glCullFace(GL_BACK);
    glDisable(GL_CULL_FACE);
    EXPECT_THAT(readTile(tile).at(19, 9), ElementsAre(128, 128, 128));
    ramps.clean();
}

} // namespace
