#include <GL/glew.h>

#include "FrameReader.h"
#include "OffscreenContext.h"
#include "Player.h"
#include "View.h"

#include "Node.h"
#include "Stage.h"

#include <FL/Fl.H>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using record::FrameReader;
using record::OffscreenContext;
using record::Picture;
using testing::ElementsAre;
using testing::FloatEq;

std::vector<std::uint8_t> pixel(const Picture& picture, int x, int y)
{
    const auto at = static_cast<std::size_t>(4 * (y * picture.width + x));
    return {&picture.pixels[at], &picture.pixels[at] + 4};
}

/// Fills a rectangle of the framebuffer, rows counted from the bottom as GL does.
void fill(int x, int y, int width, int height, float red, float green)
{
    glEnable(GL_SCISSOR_TEST);
    glScissor(x, y, width, height);
    glClearColor(red, green, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
}

TEST(RecordOffscreenContextTest, HasWhatTheWindowHas)
{
    const OffscreenContext context(30, 20);
    GLint value = 0;
    for (const GLenum bits : {GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS, GL_ALPHA_BITS}) {
        glGetIntegerv(bits, &value);
        EXPECT_EQ(value, 8);
    }
    glGetIntegerv(GL_DEPTH_BITS, &value);
    EXPECT_GE(value, 24);
    const GLuint list = glGenLists(1);
    EXPECT_NE(list, 0U) << "display lists";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(RecordOffscreenContextTest, SaysThatASizeIsTooLarge)
{
    try {
        const OffscreenContext context(65536, 2);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::MatchesRegex("a picture of 65536x2 is too large: this "
                                                        "OpenGL draws up to [0-9]+x[0-9]+"));
    }
}

TEST(RecordFrameReaderTest, ReadsFramesInOrderWithTheTopRowFirst)
{
    const OffscreenContext context(4, 3);
    FrameReader reader(4, 3);
    fill(0, 0, 4, 3, 1, 0);
    fill(1, 2, 1, 1, 0, 1); // second from the left in the top row
    reader.start();
    fill(0, 0, 4, 3, 0, 1);
    reader.start();
    EXPECT_EQ(reader.underWay(), 2);

    const Picture first = reader.finish();
    EXPECT_EQ(first.width, 4);
    EXPECT_EQ(first.height, 3);
    EXPECT_EQ(first.pixels.size(), 48U);
    EXPECT_THAT(pixel(first, 0, 0), ElementsAre(255, 0, 0, 255));
    EXPECT_THAT(pixel(first, 1, 0), ElementsAre(0, 255, 0, 255));
    EXPECT_THAT(pixel(first, 1, 1), ElementsAre(255, 0, 0, 255));
    EXPECT_THAT(pixel(first, 3, 2), ElementsAre(255, 0, 0, 255));

    EXPECT_THAT(pixel(reader.finish(), 2, 1), ElementsAre(0, 255, 0, 255));
    EXPECT_EQ(reader.underWay(), 0);
}

TEST(RecordFrameReaderTest, ReadsWithoutPaddingWhateverTheWidth)
{
    const OffscreenContext context(3, 2);
    FrameReader reader(3, 2);
    fill(0, 0, 3, 2, 1, 0);
    fill(2, 0, 1, 1, 0, 1);
    reader.start();
    const Picture& picture = reader.finish();
    EXPECT_THAT(pixel(picture, 1, 1), ElementsAre(255, 0, 0, 255));
    EXPECT_THAT(pixel(picture, 2, 1), ElementsAre(0, 255, 0, 255));
}

TEST(RecordOffscreenContextTest, DrawsWithoutPixels)
{
    const OffscreenContext context(2, 2);
    FrameReader reader(2, 2);
    fill(0, 0, 2, 2, 1, 0);
    OffscreenContext::drawPixels(false);
    fill(0, 0, 2, 2, 0, 1);
    OffscreenContext::drawPixels(true);
    reader.start();
    EXPECT_THAT(pixel(reader.finish(), 0, 0), ElementsAre(255, 0, 0, 255));
}

/// The scene below a hand that follows a script.
class RecordPlayerTest : public testing::Test {
protected:
    OffscreenContext context{64, 64};
    Stage stage{64, 64, 1, {0, 44100}};

    void SetUp() override
    {
        // The nodes of a scene live until the process ends.
        static auto* const roots = new std::vector<Node*>;
        roots->push_back(stage.scene.graph.rootNode);
    }

    void play(const std::string& text, int steps)
    {
        std::istringstream stream(text);
        const record::Script script = record::Script::parse(stream, "script");
        record::Player player(stage, script);
        for (int i = 0; i < steps; ++i) {
            player.playStep();
        }
    }

    const float* root() const { return stage.scene.graph.rootNode->transformmat; }
    const float* pivot() const { return stage.scene.graph.pivotNode->transformmat; }
};

TEST_F(RecordPlayerTest, TheWheelZooms)
{
    Fl::e_dx = 7; // of a wheel that was turned sideways
    play("0 wheel up 3\n0.05 wheel down", 2);
    EXPECT_EQ(Fl::event_dx(), 0);
    EXPECT_EQ(root()[0], 1.25F * 1.25F * 1.25F) << "the wheel goes down at the third step";
}

TEST_F(RecordPlayerTest, ADragWithVMovesTheSceneByAThousandthForEachPixel)
{
    play("0 drag v 100 100 350 20 0.1", 10);
    EXPECT_THAT(root()[12], FloatEq(0.25F));
    EXPECT_THAT(root()[13], FloatEq(0.08F));
}

TEST_F(RecordPlayerTest, ADragWithZTurnsTheSceneByItsHeightInDegrees)
{
    play("0 drag z 0 0 50 90 0.2", 10);
    EXPECT_NEAR(pivot()[0], 0, 1e-6);
    EXPECT_NEAR(pivot()[1], 1, 1e-6);
}

TEST_F(RecordPlayerTest, DragsWithXAndCTurnAboutTheOtherAxes)
{
    play("0 drag x 0 0 0 90 0\n0.025 drag c 0 0 0 90 0", 2);
    // About x, then about the scene's own y: y -> z, then x -> -z of the turned scene.
    EXPECT_NEAR(pivot()[6], 1, 1e-6);
    EXPECT_NEAR(pivot()[1], 1, 1e-6);
}

TEST_F(RecordPlayerTest, ADragBeginsWhereThePointerIsPutDown)
{
    // The pointer's way there does not count.
    play("0 move 1000 1000\n0 drag v 0 0 10 0 0", 1);
    EXPECT_THAT(root()[12], FloatEq(0.01F));
    EXPECT_THAT(root()[13], FloatEq(0.0F));
}

TEST_F(RecordPlayerTest, ARightClickIsRememberedAndSpaceRepeatsIt)
{
    play("0 click 12 34\n0.025 key space", 1);
    EXPECT_EQ(stage.window.MOUSE[0], 12);
    EXPECT_EQ(stage.window.MOUSE[1], 34);
    play("0 key space", 1);
    EXPECT_EQ(stage.window.MOUSE[0], 12);
}

TEST_F(RecordPlayerTest, AGlideSetsTheZoomAndKeepsTheMiddle)
{
    play("0 drag v 0 0 -200 100 0\n0.025 glide zoom 1 4 0.05", 3);
    EXPECT_EQ(root()[0], 2) << "half of the way";
    EXPECT_EQ(root()[5], 2);
    EXPECT_EQ(root()[10], 1);
    EXPECT_THAT(root()[12], FloatEq(-0.4F));
    EXPECT_THAT(root()[13], FloatEq(-0.2F));
    EXPECT_EQ(stage.window.pscale, 2) << "turns are slower by it";
}

TEST_F(RecordPlayerTest, TheWheelZoomsOnWhereAGlideHasEnded)
{
    play("0 glide zoom 1 4 0.05\n0.05 wheel up", 4);
    EXPECT_EQ(root()[0], 5);
    EXPECT_EQ(stage.window.pscale, 5);
}

TEST_F(RecordPlayerTest, AGlidePutsAPlaceOfTheWaterIntoTheMiddle)
{
    // 0.25 to the right of the water's middle are 0.3 of the root's units.
    play("0 glide zoom 2 2 0\n0 glide pan 0.5 0.5 0.75 0.25 0.05", 2);
    EXPECT_NEAR(root()[12], -0.3, 1e-6) << "half of the way";
    EXPECT_NEAR(root()[13], 0.3, 1e-6);
    play("0 glide pan 0 0 0.75 0.25 0", 1);
    EXPECT_NEAR(root()[12], -0.6, 1e-6);
    EXPECT_NEAR(root()[13], 0.6, 1e-6);
    EXPECT_EQ(root()[0], 2);
}

TEST_F(RecordPlayerTest, APanFindsItsPlaceInATurnedScene)
{
    // A quarter turn carries (0.3, -0.3) to (0.3, 0.3).
    play("0 drag z 0 0 0 90 0\n0 glide pan 0 0 0.75 0.25 0", 1);
    EXPECT_NEAR(root()[12], -0.3, 1e-6);
    EXPECT_NEAR(root()[13], -0.3, 1e-6);
}

TEST(RecordViewTest, AZoomThatTheTranslationCannotBearIsLeftOut)
{
    float m[16] = {};
    m[0] = m[5] = 1e-30F;
    m[12] = 1e30F;
    EXPECT_FALSE(record::View::zoom(m, 100));
    EXPECT_EQ(m[0], 1e-30F);
    EXPECT_EQ(m[12], 1e30F);
    EXPECT_TRUE(record::View::zoom(m, 1e-36F));
    EXPECT_EQ(m[5], 1e-36F);
    EXPECT_THAT(m[12], FloatEq(1e24F));
}

} // namespace
