#include "FitProjection.h"

#include "Camera.h"
#include "GLTest.h"

#include <cmath>
#include <gmock/gmock.h>

namespace {

using testing::FloatNear;

using FitProjectionTest = GLTest;

/// Where a point at the plane of the scene, 1 from the eye, comes out: -1 to 1 in the viewport.
std::pair<float, float> project(const std::vector<float>& projection, float x, float y)
{
    // Column-major; z is -1 in front of the eye, w is 1 there.
    return {projection[0] * x - projection[8] + projection[12],
            projection[5] * y - projection[9] + projection[13]};
}

TEST_F(FitProjectionTest, APortraitWallShowsTheWidthOfTheSquare)
{
    // The camera sees 2 tan(30) = 1.1547 at distance 1: the square's half is 0.57735.
    const float half = std::tan(3.14159265F / 6);
    const float offset[2] = {};
    Camera camera;
    camera.setProjType(1);
    camera.ortho2D(0, 0, 300, 600, offset);
    const auto [cut, top] = project(getMatrix(GL_PROJECTION_MATRIX), half, half);
    EXPECT_THAT(cut, FloatNear(2, 1e-5F)) << "the camera alone cuts the width";
    EXPECT_THAT(top, FloatNear(1, 1e-5F));

    scaleProjection(0.5F);
    const auto [right, up] = project(getMatrix(GL_PROJECTION_MATRIX), half, half);
    EXPECT_THAT(right, FloatNear(1, 1e-5F));
    EXPECT_THAT(up, FloatNear(0.5F, 1e-5F));
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_MODELVIEW);
}

TEST_F(FitProjectionTest, AFactorOf1ChangesNoBit)
{
    glMatrixMode(GL_PROJECTION);
    glScalef(0.1F, 0.3F, 0.7F);
    const std::vector<float> before = getMatrix(GL_PROJECTION_MATRIX);
    scaleProjection(1);
    EXPECT_EQ(getMatrix(GL_PROJECTION_MATRIX), before);
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_PROJECTION);
}

} // namespace
