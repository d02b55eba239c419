#include "Frustum.h"
#include "BBox.h"

#include "Bits.h"
#include "GLTest.h"

#include <array>
#include <cmath>
#include <random>

namespace {

constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// The planes of the cube -1..1: what identity matrices give.
constexpr float CUBE[6][4] = {{1, 0, 0, 1},  {-1, 0, 0, 1}, {0, 1, 0, 1},
                              {0, -1, 0, 1}, {0, 0, 1, 1},  {0, 0, -1, 1}};

class FrustumTest : public GLTest {};

TEST(FrustumMathTest, IdentityMatricesGiveTheUnitCube)
{
    float planes[6][4];
    Frustum::extract_planes(planes, IDENTITY, IDENTITY);
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 4; ++k) {
            EXPECT_EQ(planes[i][k], CUBE[i][k]) << "plane " << i << ", value " << k;
        }
    }
}

TEST(FrustumMathTest, PlanesEqualTheRowSumsNormalizedToTheBit)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> element(-2, 2);
    for (int n = 0; n < 300; ++n) {
        std::array<float, 16> projection;
        std::array<float, 16> modelview;
        for (std::size_t i = 0; i < 16; ++i) {
            projection[i] = element(random);
            modelview[i] = element(random);
        }
        float clip[4][4]; // [row][column]
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                volatile float sum = projection[row] * modelview[4 * column];
                for (std::size_t k = 1; k < 4; ++k) {
                    volatile float term = projection[4 * k + row] * modelview[4 * column + k];
                    sum = sum + term;
                }
                clip[row][column] = sum;
            }
        }
        float planes[6][4];
        Frustum::extract_planes(planes, projection.data(), modelview.data());
        for (int i = 0; i < 6; ++i) {
            volatile float p[4];
            for (int k = 0; k < 4; ++k) {
                p[k] = i % 2 == 0 ? clip[3][k] + clip[i / 2][k] : clip[3][k] - clip[i / 2][k];
            }
            volatile float squares = p[0] * p[0];
            volatile float b = p[1] * p[1];
            volatile float c = p[2] * p[2];
            squares = squares + b;
            squares = squares + c;
            const auto length = static_cast<float>(std::sqrt(static_cast<double>(squares)));
            for (int k = 0; k < 4; ++k) {
                ASSERT_THAT(planes[i][k], SameBits(p[k] / length));
            }
        }
    }
}

TEST(FrustumMathTest, TestPlaneCountsCornersStrictlyInside)
{
    const float unitBox[6] = {0, 0, 0, 1, 1, 1};
    const float right[4] = {-1, 0, 0, 0.5f};
    EXPECT_EQ(Frustum::test_plane(right, unitBox), 4);
    const float everything[4] = {0, 0, 0, 1};
    EXPECT_EQ(Frustum::test_plane(everything, unitBox), 8);
    const float throughFourCorners[4] = {1, 0, 0, 0};
    EXPECT_EQ(Frustum::test_plane(throughFourCorners, unitBox), 4);
    const float diagonal[4] = {1, 1, 1, -2.5f};
    EXPECT_EQ(Frustum::test_plane(diagonal, unitBox), 1);
}

TEST(FrustumMathTest, ABoxOfOneInnerPointIsInside)
{
    const float point[6] = {0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f};
    EXPECT_EQ(Frustum::test_frustum(CUBE, point), 1);
}

TEST(FrustumMathTest, ABoxThatLiesOnAPlaneIsOutside)
{
    const float onTheLeftPlane[6] = {-1, -0.5f, -0.5f, -1, 0.5f, 0.5f};
    EXPECT_EQ(Frustum::test_frustum(CUBE, onTheLeftPlane), -1);
}

TEST(FrustumMathTest, ABoxAcrossTheNearPlaneIntersects)
{
    const float acrossNear[6] = {-0.5f, -0.5f, -2, 0.5f, 0.5f, 0};
    EXPECT_EQ(Frustum::test_frustum(CUBE, acrossNear), 0);
}

TEST(FrustumMathTest, APointOnAPlaneIsOutside)
{
    const float center[3] = {0, 0, 0};
    EXPECT_EQ(Frustum::test_point(CUBE, center), 1);
    const float onTheLeftPlane[3] = {-1, 0, 0};
    EXPECT_EQ(Frustum::test_point(CUBE, onTheLeftPlane), -1);
    const float beyondFar[3] = {0, 0, 1.5f};
    EXPECT_EQ(Frustum::test_point(CUBE, beyondFar), -1);
}

TEST(FrustumMathTest, PrintWritesAnEmptyLineAndSixPlanes)
{
    testing::internal::CaptureStdout();
    Frustum::print(CUBE);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n"
                                                      "1.000000 0.000000 0.000000 1.000000\n"
                                                      "-1.000000 0.000000 0.000000 1.000000\n"
                                                      "0.000000 1.000000 0.000000 1.000000\n"
                                                      "0.000000 -1.000000 0.000000 1.000000\n"
                                                      "0.000000 0.000000 1.000000 1.000000\n"
                                                      "0.000000 0.000000 -1.000000 1.000000\n");
}

TEST(BBoxTest, HoldsTwoCorners)
{
    const float corners[6] = {1, 2, 3, 4, 5, 6};
    BBox box(corners);
    EXPECT_EQ(std::vector<float>(box.getBounds(), box.getBounds() + 6),
              (std::vector<float>{1, 2, 3, 4, 5, 6}));
    box.set(6, 5, 4, 3, 2, 1);
    EXPECT_EQ(std::vector<float>(box.bounds, box.bounds + 6),
              (std::vector<float>{6, 5, 4, 3, 2, 1}));
    box.set(corners);
    EXPECT_EQ(box.bounds[5], 6);
}

TEST(BBoxTest, PrintKeepsItsLabels)
{
    BBox box;
    box.set(1, 2, 3, 4, 5, 6);
    testing::internal::CaptureStdout();
    box.print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "x: 1.000000, 2.000000 y: 3.000000, 4.000000 z: 5.000000 6.000000\n");
}

TEST_F(FrustumTest, GetFrustumOfIdentityMatricesIsTheUnitCube)
{
    float planes[6][4];
    Frustum::get_frustum(planes);
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 4; ++k) {
            EXPECT_EQ(planes[i][k], CUBE[i][k]) << "plane " << i << ", value " << k;
        }
    }
}

TEST_F(FrustumTest, GetFrustumReadsTheCurrentMatrices)
{
    glMatrixMode(GL_PROJECTION);
    glOrtho(-2, 2, -4, 4, -8, 8);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(1, 0, 0);
    float planes[6][4];
    Frustum::get_frustum(planes);
    const float expected[6][4] = {{1, 0, 0, 3},  {-1, 0, 0, 1}, {0, 1, 0, 4},
                                  {0, -1, 0, 4}, {0, 0, -1, 8}, {0, 0, 1, 8}};
    // glOrtho looks along -z: its near plane lies at z = 8.
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 4; ++k) {
            EXPECT_NEAR(planes[i][k], expected[i][k], 1e-5) << "plane " << i << ", value " << k;
        }
    }
}

TEST_F(FrustumTest, TheViewPointOfTheIdentityIsTheOrigin)
{
    float p[4] = {9, 9, 9, 9};
    Frustum::get_view_point(p);
    EXPECT_EQ(std::vector<float>(p, p + 4), (std::vector<float>{0, 0, 0, 1}));
}

TEST_F(FrustumTest, TheViewPointOfATranslationIsItsOpposite)
{
    glTranslatef(2, -3, 4);
    float p[4];
    Frustum::get_view_point(p);
    EXPECT_EQ(std::vector<float>(p, p + 4), (std::vector<float>{-2, 3, -4, 1}));
}

TEST_F(FrustumTest, TheViewPointUnderAScalingIsTheInverseTranslationTimesTheScale)
{
    glScalef(4, 4, 4);
    glTranslatef(1, 2, 3);
    float p[4];
    Frustum::get_view_point(p);
    EXPECT_EQ(std::vector<float>(p, p + 4), (std::vector<float>{-4, -8, -12, 1}));
}

} // namespace
