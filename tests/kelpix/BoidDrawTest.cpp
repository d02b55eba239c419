#include "Boid.h"

#include "Boider.h"
#include "ExactFeedback.h"
#include "TestBoids.h"

#include <cmath>

namespace {

class BoidDrawTest : public GLTest {
protected:
    static std::vector<Feedback::Primitive> outlineOf(Boid* boid)
    {
        return ExactFeedback(32).of([boid] { boid->draw(); });
    }

    TestBoids boids;
};

TEST_F(BoidDrawTest, ABubblesOutlineIsTheReferencesToTheBit)
{
    for (const int counter : {0, 2, 90, 181, 360}) {
        Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {3, -2.5f, 0.5f});
        bubble->counter = counter;
        reference::Boid expected(true, {});
        expected.vel = toTriple(bubble->vel);
        expected.counter = counter;
        const auto lines = outlineOf(bubble);
        std::vector<std::array<Single, 2>> points;
        expected.outline([&](Single x, Single y) { points.push_back({x, y}); });
        ASSERT_EQ(lines.size(), 360u);
        for (std::size_t i = 0; i < 360; ++i) {
            EXPECT_EQ(lines[i].vertices[0].x, points[i][0].value) << "point " << i;
            EXPECT_EQ(lines[i].vertices[0].y, points[i][1].value) << "point " << i;
            const std::size_t next = (i + 1) % 360;
            EXPECT_EQ(lines[i].vertices[1].x, points[next][0].value);
        }
    }
}

TEST_F(BoidDrawTest, TheOutlineReachesTwentyUnitsAlongTheVelocity)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 0, 0});
    float highest = 0;
    float farthest = 0;
    for (const Feedback::Primitive& line : outlineOf(bubble)) {
        farthest = std::max(farthest, std::fabs(line.vertices[0].x));
        highest = std::max(highest, std::fabs(line.vertices[0].y));
        EXPECT_FLOAT_EQ(line.vertices[0].color[0], 0.8f);
        EXPECT_FLOAT_EQ(line.vertices[0].color[1], 0.8f);
        EXPECT_FLOAT_EQ(line.vertices[0].color[2], 1);
        EXPECT_FLOAT_EQ(line.vertices[0].color[3], 0.5f);
    }
    EXPECT_FLOAT_EQ(farthest, 20);
    EXPECT_NEAR(highest, 10, 0.01) << "two lobes, half as wide as long";
}

TEST_F(BoidDrawTest, TheOutlineIsBlendedOverWhatIsThere)
{
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 1, 0});
    glScalef(1 / 32.0f, 1 / 32.0f, 1);
    bubble->draw();
    const std::vector<unsigned char> picture = pixels();
    int drawn = 0;
    for (std::size_t i = 0; i < picture.size(); i += 4) {
        if (picture[i + 2] > 0) {
            ++drawn;
            // At least once 0.5 * (0.8, 0.8, 1) + 0.5 * what is there; lines cross at the center.
            EXPECT_GE(picture[i + 1], 100);
            EXPECT_GE(picture[i + 2], 126);
            EXPECT_LT(picture[i], 231);
        }
    }
    EXPECT_GT(drawn, 500);
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
}

TEST_F(BoidDrawTest, EveryDrawAdvancesTheOutlineByTwo)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 0, 0});
    for (const int expected : {2, 4, 6, 8}) {
        bubble->draw();
        EXPECT_EQ(bubble->counter, expected);
    }
    bubble->counter = 358;
    for (const int expected : {360, 2, 4}) {
        bubble->draw();
        EXPECT_EQ(bubble->counter, expected);
    }
    bubble->counter = 359;
    bubble->draw();
    EXPECT_EQ(bubble->counter, 1);
}

TEST_F(BoidDrawTest, AFishDrawsNothingItself)
{
    Boid* const fish = boids.add(BOID_FISH, 1, {}, {2, 0, 0});
    EXPECT_TRUE(outlineOf(fish).empty());
    EXPECT_EQ(fish->counter, 0);
    float color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_THAT(color, testing::ElementsAre(1, 1, 1, 1)) << "no GL state is touched";
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_ONE);
}

TEST_F(BoidDrawTest, ABubbleAtRestHasNoOutline)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {0, 0, 0});
    EXPECT_TRUE(outlineOf(bubble).empty()) << "vertices that are not numbers";
    EXPECT_EQ(bubble->counter, 2);
    bubble->vel = Vec3(NAN, INFINITY, 0);
    EXPECT_TRUE(outlineOf(bubble).empty());
    EXPECT_EQ(bubble->counter, 4);
}

TEST_F(BoidDrawTest, ABoidInViewIsDrawn)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 0, 0});
    EXPECT_FALSE(bubble->initialized);
    EXPECT_EQ(bubble->cull(), 1);
    EXPECT_TRUE(bubble->initialized);
    EXPECT_EQ(bubble->counter, 2) << "drawn";
    EXPECT_EQ(boids.add(BOID_FISH, 1, {})->cull(), 1);
}

TEST_F(BoidDrawTest, ABoidOutOfViewIsNotDrawn)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 0, 0});
    const float directions[][3] = {{2, 0, 0},  {-2, 0, 0}, {0, 2, 0},
                                   {0, -2, 0}, {0, 0, 2},  {0, 0, -2}};
    for (const auto& direction : directions) {
        glLoadIdentity();
        glTranslatef(direction[0], direction[1], direction[2]);
        EXPECT_EQ(bubble->cull(), -1);
    }
    EXPECT_TRUE(bubble->initialized);
    EXPECT_EQ(bubble->counter, 0);
}

TEST_F(BoidDrawTest, OnlyTheOriginOfABoidDecides)
{
    Boid* const bubble = boids.add(BOID_BUBBLE, 10, {}, {2, 0, 0});
    glTranslatef(1, 0, 0);
    EXPECT_EQ(bubble->cull(), -1) << "on the border is outside";
    glLoadIdentity();
    glTranslatef(0.999f, 0, 0);
    EXPECT_EQ(bubble->cull(), 1);
}

TEST_F(BoidDrawTest, CleanupDeletesTheSpriteAndItsList)
{
    Boid* const boid = boids.add(BOID_FISH, 1, {});
    boid->boider->cull();
    const GLuint list = boid->boider->boidGeometry;
    ASSERT_TRUE(glIsList(list));
    boid->cleanup();
    EXPECT_FALSE(glIsList(list));
    EXPECT_EQ(boid->boider, nullptr);
    boid->cleanup();
    Boid().cleanup();
}

} // namespace
