#include "SensorRep.h"

#include "ExactFeedback.h"
#include "ReferenceMatchers.h"

#include <cmath>
#include <cstdlib>

namespace {

/// A body whose frame number f is one point at (f, f, f): what is drawn tells which frame it was.
class NumberedFrames {
public:
    explicit NumberedFrames(SensorRep& rep)
    {
        rep.initialized = true;
        rep.baseAnimFrames = 240;
        rep.baseAnim = new unsigned[240];
        first = glGenLists(240);
        for (unsigned frame = 0; frame < 240; ++frame) {
            rep.baseAnim[frame] = first + frame;
            glNewList(first + frame, GL_COMPILE);
            glBegin(GL_POINTS);
            const auto place = static_cast<float>(frame);
            glVertex3f(place, place, place);
            glEnd();
            glEndList();
        }
    }
    NumberedFrames(const NumberedFrames&) = delete;
    NumberedFrames& operator=(const NumberedFrames&) = delete;
    ~NumberedFrames() { glDeleteLists(first, 240); }

private:
    GLuint first = 0;
};

class SensorRepDrawTest : public GLTest {
protected:
    SensorRepDrawTest()
    {
        rep.pos = &pos;
        rep.vel = &vel;
    }

    /// Which of the numbered frames the next draw shows.
    int frameDrawn()
    {
        const auto shapes = ExactFeedback(256).of([this] { rep.draw(); });
        EXPECT_EQ(shapes.size(), 1u);
        EXPECT_EQ(shapes[0].token, static_cast<GLenum>(GL_POINT_TOKEN));
        return static_cast<int>(std::lround(shapes[0].vertices[0].x / 0.3f));
    }

    Vec3 pos;
    Vec3 vel;
    SensorRep rep;
};

TEST_F(SensorRepDrawTest, EachDrawShowsTheNextFrame)
{
    const NumberedFrames frames(rep);
    rep.counter = 100;
    for (int frame = 100; frame < 105; ++frame) {
        EXPECT_EQ(frameDrawn(), frame);
        EXPECT_EQ(rep.counter, frame + 1);
    }
}

TEST_F(SensorRepDrawTest, FrameOneStandsInForFrameZero)
{
    const NumberedFrames frames(rep);
    rep.counter = 239;
    EXPECT_EQ(frameDrawn(), 239);
    EXPECT_EQ(rep.counter, 0);
    EXPECT_EQ(frameDrawn(), 1);
    EXPECT_EQ(rep.counter, 1);
    EXPECT_EQ(frameDrawn(), 1) << "twice in a row";
    EXPECT_EQ(frameDrawn(), 2);
}

TEST_F(SensorRepDrawTest, TheBodyIsDrawnAtThreeTenthsOfItsSize)
{
    const NumberedFrames frames(rep);
    rep.counter = 100;
    const auto shapes = ExactFeedback(256).of([this] { rep.draw(); });
    ASSERT_EQ(shapes.size(), 1u);
    EXPECT_FLOAT_EQ(shapes[0].vertices[0].x, 30);
    EXPECT_FLOAT_EQ(shapes[0].vertices[0].y, 30);
    EXPECT_FLOAT_EQ(shapes[0].vertices[0].z, (1 + 30 / 256.0f) / 2) << "depth";
    EXPECT_THAT(shapes[0].vertices[0].color, testing::ElementsAre(0.5f, 0.5f, 1, 0.5f));
}

TEST_F(SensorRepDrawTest, TheTentaclesAreTheReferencesToTheBit)
{
    const NumberedFrames frames(rep);
    reference::Tentacles expected;
    for (int n = 0; n < 40; ++n) {
        vel = Vec3(0.1f * std::sin(static_cast<float>(n)), 0.01f * static_cast<float>(n - 10), 0);
        rep.doupdate();
        expected.update(toTriple(vel));

        // Lines in list order, strip after strip; the first shape is the body.
        const auto shapes = ExactFeedback(256).of([this] { rep.draw(); });
        const auto strips = expected.strips(toTriple(vel));
        const std::size_t lines = expected.points.size() - 1;
        ASSERT_EQ(shapes.size(), 1 + 3 * lines);
        for (std::size_t s = 0; s < 3; ++s) {
            for (std::size_t i = 0; i < lines; ++i) {
                const auto& ends = shapes[1 + s * lines + i].vertices;
                ASSERT_EQ(ends.size(), 2u);
                for (std::size_t end = 0; end < 2; ++end) {
                    ASSERT_EQ(ends[end].x, strips[s][i + end][0].value) << s << " " << i;
                    ASSERT_EQ(ends[end].y, strips[s][i + end][1].value) << s << " " << i;
                    ASSERT_EQ(ends[end].z, 0.5f) << "in the plane z = 0";
                }
            }
        }
    }
}

TEST_F(SensorRepDrawTest, WithoutTentaclesOnlyTheBodyIsDrawn)
{
    const NumberedFrames frames(rep);
    EXPECT_EQ(frameDrawn(), 1);
}

TEST_F(SensorRepDrawTest, BodyAndTentaclesAreBlendedOverWhatIsThere)
{
    const NumberedFrames frames(rep);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    vel = Vec3(0, 0.5f, 0); // a tentacle of two points, straight down
    rep.doupdate();
    rep.doupdate();
    rep.cos_curve = {0, 0};
    rep.sin_curve = {0, 0};
    rep.tentacle.front()->x = 0.5f;
    rep.tentacle.back()->x = 0.5f / 1.025f;
    rep.tentacle.front()->y = 0.5f;
    rep.tentacle.back()->y = -0.5f;
    rep.counter = 1;
    rep.draw();
    const auto line = pixel(WIDTH / 4 * 3, HEIGHT / 2);
    EXPECT_NEAR(line[0], 191, 2); // (0.5, 0.5, 1) at half opacity over red
    EXPECT_NEAR(line[1], 64, 2);
    EXPECT_NEAR(line[2], 128, 2);
    int width = 0;
    for (int x = 0; x < WIDTH; ++x) {
        width += pixel(x, HEIGHT / 2)[2] > 0 ? 1 : 0;
    }
    EXPECT_NEAR(width, 3 * 3, 1) << "three lines, three pixels wide";
}

TEST_F(SensorRepDrawTest, DrawingLeavesBlendingOffAndLinesThin)
{
    const NumberedFrames frames(rep);
    glEnable(GL_TEXTURE_2D);
    glEnableClientState(GL_VERTEX_ARRAY);
    glTranslatef(1, 2, 3);
    const auto modelview = getMatrix(GL_MODELVIEW_MATRIX);
    rep.draw();
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_FALSE(isEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(isEnabled(GL_TEXTURE_2D)) << "the texture state is the caller's";
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX), modelview);
    float width = 0;
    glGetFloatv(GL_LINE_WIDTH, &width);
    EXPECT_EQ(width, 1);
}

/// Draws one frame of the body with the reference's geometry.
void drawReferenceFrame(int frame)
{
    const auto quads = reference::bodyQuads(frame);
    for (int k = 0; k < reference::BODY_SEGMENTS; ++k) {
        const reference::Segment segment = reference::bodySegment(frame, k);
        glPushMatrix();
        glTranslatef(0, segment.shift.value, 0);
        glScalef(segment.scale.x.value, segment.scale.y.value, segment.scale.z.value);
        for (const auto& quad : quads) {
            float corners[4][3];
            for (std::size_t i = 0; i < 4; ++i) {
                corners[i][0] = quad[i].x.value;
                corners[i][1] = quad[i].y.value;
                corners[i][2] = quad[i].z.value;
            }
            drawTexturedQuad(corners);
        }
        glPopMatrix();
    }
}

constexpr float SQUARE[4][3] = {
    {-0.01f, -0.01f, 0}, {0.01f, -0.01f, 0}, {0.01f, 0.01f, 0}, {-0.01f, 0.01f, 0}};

TEST_F(SensorRepDrawTest, TheFirstCullCompilesTheBody)
{
    std::srand(5); // one that leaves an angle to be seen
    ReferenceRandom random(5);
    vel = Vec3(0.1f, 0.1f, 0);
    testing::internal::CaptureStdout();
    const int visible = rep.cull();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(visible, 1);
    EXPECT_EQ(printed, "-- Generate 240 frames of base animation.\n");
    EXPECT_TRUE(rep.initialized);
    EXPECT_EQ(rep.baseAnimFrames, 240);

    // A number for each frame, one for the frame to start with, one for an angle.
    reference::Tentacles expected;
    expected.draw(random);
    EXPECT_EQ(rep.counter, expected.counter);
    EXPECT_NE(rep.pre_angle, 0);
    EXPECT_THAT(rep.pre_angle, SameBits(expected.preAngle.value));
    EXPECT_EQ(std::rand(), random.next());

    for (int frame = 0; frame < 240; ++frame) {
        EXPECT_TRUE(glIsList(rep.baseAnim[frame]));
        EXPECT_EQ(rep.baseAnim[frame], rep.baseAnim[0] + static_cast<unsigned>(frame));
    }
    for (const int frame : {1, 2, 60, 137, 239}) {
        SCOPED_TRACE(frame);
        const ExactFeedback feedback(4);
        const auto body = feedback.of([&] { glCallList(rep.baseAnim[frame]); });
        const auto drawn = feedback.of([frame] { drawReferenceFrame(frame); });
        EXPECT_EQ(difference(body, drawn), "");
        const auto aQuad = feedback.of([] { drawTexturedQuad(SQUARE); });
        const std::size_t segment = 15 * 16 * aQuad.size();
        ASSERT_EQ(body.size(), 6 * segment);
        for (std::size_t i = 0; i < segment; ++i) {
            for (const Feedback::Vertex& vertex : body[i].vertices) {
                ASSERT_EQ(vertex.z, 0.5f) << "the first segment is flat";
            }
        }
    }
    EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1) << "the lists leave no matrix behind";

    // The small square that is made and never drawn.
    {
        const ExactFeedback feedback(1);
        const auto square = feedback.of([this] { glCallList(rep.sensorGeom); });
        const auto expected = feedback.of([] { drawTexturedQuad(SQUARE); });
        EXPECT_EQ(difference(square, expected), "");
    }

    const GLuint lists = rep.baseAnim[0];
    rep.cull();
    EXPECT_EQ(rep.baseAnim[0], lists) << "once";
    EXPECT_EQ(std::rand(), random.next());
}

} // namespace
