#include "Camera.h"

#include "GLTest.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <numbers>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;

/// A 4x4 matrix in double precision, column-major.
using Matrix4 = std::array<double, 16>;

std::vector<float> single(const Matrix4& m)
{
    std::vector<float> rounded(16);
    for (std::size_t i = 0; i < 16; ++i) {
        rounded[i] = static_cast<float>(m[i]);
    }
    return rounded;
}

Matrix4 product(const Matrix4& a, const Matrix4& b)
{
    Matrix4 out{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t k = 0; k < 4; ++k) {
                out[4 * column + row] += a[4 * k + row] * b[4 * column + k];
            }
        }
    }
    return out;
}

Matrix4 translation(double x, double y, double z)
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

/// The matrix that the manual page of gluPerspective gives.
Matrix4 perspective(double fovy, double aspect, double zNear, double zFar)
{
    const double f = 1 / std::tan(fovy * std::numbers::pi / 360);
    return {f / aspect,
            0,
            0,
            0,
            0,
            f,
            0,
            0,
            0,
            0,
            (zFar + zNear) / (zNear - zFar),
            -1,
            0,
            0,
            2 * zFar * zNear / (zNear - zFar),
            0};
}

/// The matrix that the manual page of glOrtho gives, for a volume centered on the origin.
Matrix4 orthographic(double right, double top, double zFar)
{
    return {1 / right, 0, 0, 0, 0, 1 / top, 0, 0, 0, 0, -1 / zFar, 0, 0, 0, 0, 1};
}

constexpr float NO_OFFSET[2] = {0, 0};

class CameraTest : public GLTest {
protected:
    Camera camera;

    static std::vector<int> getRectangle(GLenum what)
    {
        std::vector<int> rectangle(4);
        glGetIntegerv(what, rectangle.data());
        return rectangle;
    }

    /// What the set-ups promise besides the projection: viewport, scissor box and view transform.
    static void expectSetUp(int w, int h, float eyeZ)
    {
        EXPECT_THAT(getRectangle(GL_VIEWPORT), ElementsAre(0, 0, w, h));
        EXPECT_THAT(getRectangle(GL_SCISSOR_BOX), ElementsAre(0, 0, w, h));
        EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX), single(translation(0, 0, -eyeZ)));
        EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_MODELVIEW);
    }

    /// Where a point of the eye frame lands, in normalized device coordinates.
    static std::array<double, 2> projected(double x, double y, double z)
    {
        const std::vector<float> m = getMatrix(GL_PROJECTION_MATRIX);
        const auto row = [&](std::size_t i) {
            return static_cast<double>(m[i]) * x + static_cast<double>(m[4 + i]) * y +
                   static_cast<double>(m[8 + i]) * z + static_cast<double>(m[12 + i]);
        };
        return {row(0) / row(3), row(1) / row(3)};
    }
};

TEST(CameraDataTest, StartsUndefinedAtTheOriginLookingAlongMinusZ)
{
    Camera camera;
    EXPECT_TRUE(camera.viewportList.empty());
    EXPECT_EQ(camera.projType, -1);
    EXPECT_THAT(camera.eye, ElementsAre(0, 0, 0));
    EXPECT_THAT(camera.center, ElementsAre(0, 0, -1));
    EXPECT_THAT(camera.up, ElementsAre(0, 1, 0));
    EXPECT_EQ(camera.getEye(), camera.eye);
    EXPECT_EQ(camera.getCenter(), camera.center);
    EXPECT_EQ(camera.getUp(), camera.up);
}

TEST(CameraDataTest, RecordsKeepTheirFieldsInOrder)
{
    const Camera camera;
    const std::array<const void*, 6> fields = {&camera.viewportList, &camera.projType, &camera.view,
                                               &camera.eye,          &camera.center,   &camera.up};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));

    const Viewport viewport = {1, 2, 3, 4, {5, 6}};
    EXPECT_EQ(viewport.x, 1);
    EXPECT_EQ(viewport.y, 2);
    EXPECT_EQ(viewport.w, 3);
    EXPECT_EQ(viewport.h, 4);
    EXPECT_THAT(viewport.offset, ElementsAre(5, 6));

    const Point2 point = {7, 8};
    EXPECT_EQ(point.x, 7);
    EXPECT_EQ(point.y, 8);
}

/// In a process without a GL context, where GL's calls do nothing. The standard output of that
/// process goes where its standard error is looked at, and its standard error goes nowhere.
TEST(CameraDeathTest, AnUndefinedProjectionEndsTheProcessWithOneMessage)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::fflush(stdout);
            dup2(STDERR_FILENO, STDOUT_FILENO);
            dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
            Camera camera;
            camera.ortho2D(0, 0, 740, 740, NO_OFFSET);
        },
        testing::ExitedWithCode(0), testing::StrEq("Please define camera projection type.\n"));
}

TEST_F(CameraTest, PerspectiveOfASquareWindow)
{
    camera.setProjType(1);
    camera.ortho2D(11, 22, 740, 740, NO_OFFSET);
    expectSetUp(740, 740, 1);
    EXPECT_THAT(camera.view, ElementsAre(740, 740));
    EXPECT_THAT(camera.eye, ElementsAre(0, 0, 1));
    EXPECT_THAT(camera.center, ElementsAre(0, 0, -1));
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-6f), single(perspective(60, 1, 0.01, 100))));
}

TEST_F(CameraTest, PerspectiveTakesTheAspectRatioInSinglePrecision)
{
    camera.setProjType(1);
    camera.ortho2D(0, 0, 1366, 768, NO_OFFSET);
    expectSetUp(1366, 768, 1);
    const std::vector<float> expected =
        single(perspective(60, static_cast<double>(1366.0f / 768.0f), 0.01, 100));
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX), Pointwise(FloatNear(1e-6f), expected));
    // Of this size a ratio in double precision gives the neighboring float.
    EXPECT_EQ(getMatrix(GL_PROJECTION_MATRIX)[0], expected[0]);
    EXPECT_NE(single(perspective(60, 1366.0 / 768.0, 0.01, 100))[0], expected[0]);
}

TEST_F(CameraTest, AnyTypeButZeroAndUndefinedIsPerspective)
{
    for (const int type : {2, -2, 99}) {
        camera.setProjType(type);
        camera.ortho2D(0, 0, 740, 740, NO_OFFSET);
        EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                    Pointwise(FloatNear(1e-6f), single(perspective(60, 1, 0.01, 100))));
    }
}

TEST_F(CameraTest, OrthographicSpansTwiceTheWindow)
{
    camera.setProjType(0);
    camera.eye[2] = 5;
    camera.ortho2D(11, 22, 400, 300, NO_OFFSET);
    expectSetUp(400, 300, 0);
    EXPECT_THAT(camera.view, ElementsAre(400, 300));
    EXPECT_THAT(camera.eye, ElementsAre(0, 0, 0));
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-7f), single(orthographic(400, 300, 100))));
}

TEST_F(CameraTest, OrthographicMapsTheSizeToTheTopRightCorner)
{
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, NO_OFFSET);
    const auto corner = projected(400, 300, 0);
    EXPECT_NEAR(corner[0], 1, 1e-6);
    EXPECT_NEAR(corner[1], 1, 1e-6);
    const auto center = projected(0, 0, 0);
    EXPECT_NEAR(center[0], 0, 1e-6);
    EXPECT_NEAR(center[1], 0, 1e-6);
}

TEST_F(CameraTest, TheOffsetMovesTheSceneUntilTheNextReshape)
{
    const float offset[2] = {0.5f, 0};
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, offset);
    expectSetUp(400, 300, 0);
    // Left by half of 400 scene units, of which the window shows 800.
    EXPECT_NEAR(projected(0, 0, 0)[0], -0.5, 1e-6);
    EXPECT_NEAR(projected(0, 0, 0)[1], 0, 1e-6);
    EXPECT_NEAR(projected(200, 0, 0)[0], 0, 1e-6);

    camera.reshape(0, 0, 400, 300);
    EXPECT_NEAR(projected(0, 0, 0)[0], 0, 1e-6);
}

TEST_F(CameraTest, TheOffsetIsMultipliedOnAfterTheProjection)
{
    const float offset[2] = {0.001f, -0.002f};
    camera.setProjType(1);
    camera.ortho2D(0, 0, 500, 300, offset);
    expectSetUp(500, 300, 1);
    const double aspect = static_cast<double>(500.0f / 300.0f);
    const Matrix4 expected = product(perspective(60, aspect, 0.01, 100), translation(-0.5, 0.6, 0));
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX), Pointwise(FloatNear(1e-6f), single(expected)));
}

TEST_F(CameraTest, ReshapeSetsTheNewSizeUpAndKeepsTheOldOneInView)
{
    const float offset[2] = {0.25f, 0.25f};
    camera.setProjType(1);
    camera.ortho2D(0, 0, 740, 740, offset);
    camera.eye[2] = 9;
    camera.reshape(33, 44, 300, 600);
    expectSetUp(300, 600, 1);
    EXPECT_THAT(camera.view, ElementsAre(740, 740));
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-6f), single(perspective(60, 0.5, 0.01, 100))));

    camera.setProjType(0);
    camera.reshape(0, 0, 200, 100);
    expectSetUp(200, 100, 0);
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-7f), single(orthographic(200, 100, 100))));
}

TEST_F(CameraTest, AnUndefinedTypeCountsAsPerspectiveInReshape)
{
    camera.reshape(0, 0, 740, 740);
    expectSetUp(740, 740, 1);
    EXPECT_EQ(camera.projType, -1);
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-6f), single(perspective(60, 1, 0.01, 100))));
}

TEST_F(CameraTest, LooksFromTheEyeToTheCenter)
{
    camera.setProjType(1);
    camera.eye[0] = 2;
    camera.center[0] = 2;
    camera.ortho2D(0, 0, 740, 740, NO_OFFSET);
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX), single(translation(-2, 0, -1)));

    camera.up[0] = 1;
    camera.up[1] = 0;
    camera.reshape(0, 0, 740, 740);
    // Looking along -z with x upwards: right is -y.
    const Matrix4 turned = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, -2, -1, 1};
    EXPECT_THAT(getMatrix(GL_MODELVIEW_MATRIX), Pointwise(FloatNear(1e-6f), single(turned)));
}

TEST_F(CameraTest, SetUpsReplaceWhateverTheMatricesHeld)
{
    glMatrixMode(GL_PROJECTION);
    glScalef(3, 4, 5);
    glMatrixMode(GL_MODELVIEW);
    glScalef(3, 4, 5);
    camera.setProjType(0);
    camera.reshape(0, 0, 400, 300);
    expectSetUp(400, 300, 0);
    EXPECT_THAT(getMatrix(GL_PROJECTION_MATRIX),
                Pointwise(FloatNear(1e-7f), single(orthographic(400, 300, 100))));
}

TEST_F(CameraTest, SizesOfZeroAndLessLeaveACameraThatTheNextSizeMends)
{
    for (const int type : {0, 1}) {
        camera.setProjType(type);
        for (const int size : {0, -1, INT_MIN, INT_MAX}) {
            camera.ortho2D(0, 0, size, size, NO_OFFSET);
            camera.reshape(0, 0, 740, size);
            camera.reshape(0, 0, size, 740);
        }
        while (glGetError() != GL_NO_ERROR) {
            // GL refuses such sizes.
        }
        camera.reshape(0, 0, 740, 740);
        expectSetUp(740, 740, static_cast<float>(type));
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

TEST_F(CameraTest, UnprojectFlipsTheWindowsYAxis)
{
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, NO_OFFSET);
    Point2 out;
    const Point2 topLeft = {0, -1};
    EXPECT_EQ(camera.unproject(&out, &topLeft, IDENTITY), &out);
    EXPECT_NEAR(out.x, -400, 1e-3);
    EXPECT_NEAR(out.y, 300, 1e-3);
    // The last row of pixels lies on the lower edge: its y counts from the top, the height less 1.
    const Point2 bottomRight = {400, 299};
    camera.unproject(&out, &bottomRight, IDENTITY);
    EXPECT_NEAR(out.x, 400, 1e-3);
    EXPECT_NEAR(out.y, -300, 1e-3);
}

TEST_F(CameraTest, UnprojectInvertsTheProjectionOnTheNearPlane)
{
    camera.setProjType(1);
    camera.ortho2D(0, 0, 740, 740, NO_OFFSET);
    const Point2 in = {555, 184};
    Point2 out;
    camera.unproject(&out, &in, IDENTITY);
    // Half of the half-width of the near plane to the right and, the flip being 739 - y, upwards.
    const double halfNear = 0.01 * std::tan(std::numbers::pi / 6);
    EXPECT_NEAR(out.x, 0.5 * halfNear, 1e-6);
    EXPECT_NEAR(out.y, 0.5 * halfNear, 1e-6);
}

TEST_F(CameraTest, UnprojectGoesBackFromAWindowPositionThroughAModelTransform)
{
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, NO_OFFSET);
    // Turned by 90 degrees, scaled by 2, moved by (30, 40).
    const float model[16] = {0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 30, 40, 0, 1};
    // The model's point (10, -20) lies at (30 + 40, 40 + 20) of an 800 by 600 scene.
    const Point2 in = {(70.0f + 400) / 2, 299 - (60.0f + 300) / 2};
    Point2 out;
    camera.unproject(&out, &in, model);
    EXPECT_NEAR(out.x, 10, 1e-4);
    EXPECT_NEAR(out.y, -20, 1e-4);
    expectSetUp(400, 300, 0);
    EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1);
}

TEST_F(CameraTest, UnprojectTakesAViewportsOriginOffTwice)
{
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, NO_OFFSET);
    glViewport(100, 50, 400, 300);
    const Point2 in = {300, 99};
    Point2 out;
    camera.unproject(&out, &in, IDENTITY);
    // Once before the flip and once in GLU: x = 300 - 100 - 100, y = 299 - (99 - 50) - 50.
    EXPECT_NEAR(out.x, 100.0 * 2 - 400, 1e-3);
    EXPECT_NEAR(out.y, 200.0 * 2 - 300, 1e-3);
}

TEST_F(CameraTest, UnprojectThroughASingularTransformGivesTheOrigin)
{
    camera.setProjType(0);
    camera.ortho2D(0, 0, 400, 300, NO_OFFSET);
    const float flat[16] = {};
    const Point2 in = {10, 20};
    Point2 out = {5, 5};
    camera.unproject(&out, &in, flat);
    EXPECT_EQ(out.x, 0);
    EXPECT_EQ(out.y, 0);
}

} // namespace
