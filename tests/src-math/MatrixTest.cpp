#include "Matrix.h"

#include "Bits.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

using Mat = std::array<float, 16>;

constexpr Mat IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Mat filledWith(float value)
{
    Mat m;
    m.fill(value);
    return m;
}

/// A matrix of random elements that is far from singular.
Mat randomMatrix(std::mt19937& random)
{
    std::uniform_real_distribution<float> element(-1, 1);
    Mat m;
    for (float& e : m) {
        e = element(random);
    }
    for (std::size_t i = 0; i < 16; i += 5) {
        m[i] += 4;
    }
    return m;
}

float at(const Mat& m, std::size_t row, std::size_t column)
{
    return m[4 * column + row];
}

TEST(MatrixTest, LoadIdentityWritesAllSixteenElements)
{
    Mat m = filledWith(7);
    Matrix::load_identity(m.data());
    EXPECT_EQ(m, IDENTITY);
}

TEST(MatrixTest, LocationHoldsTheTranslationInElements12To14)
{
    Mat m = filledWith(7);
    Matrix::location(m.data(), 2, 3, 4);
    Mat expected = IDENTITY;
    expected[12] = 2;
    expected[13] = 3;
    expected[14] = 4;
    EXPECT_EQ(m, expected);
}

TEST(MatrixTest, ScaleHoldsTheFactorsOnTheDiagonal)
{
    Mat m = filledWith(7);
    Matrix::scale(m.data(), 2, 3, 4);
    EXPECT_EQ(m, (Mat{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}));
}

TEST(MatrixTest, RotationBy90DegreesAboutZTurnsXIntoY)
{
    Mat m = filledWith(7);
    Matrix::rotation(m.data(), 0, 0, 1, 90);
    const Mat expected = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_NEAR(m[i], expected[i], 1e-6) << "element " << i;
    }
}

TEST(MatrixTest, RotationNormalizesItsAxis)
{
    Mat unit;
    Mat longer;
    Matrix::rotation(unit.data(), 0, 0, 1, 33);
    Matrix::rotation(longer.data(), 0, 0, 5, 33);
    EXPECT_EQ(unit, longer);
}

TEST(MatrixTest, RotationAboutAZeroAxisIsNaNWithoutAMessage)
{
    Mat m;
    testing::internal::CaptureStdout();
    Matrix::rotation(m.data(), 0, 0, 0, 45);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    for (const std::size_t i : {0, 1, 2, 4, 5, 6, 8, 9, 10}) {
        EXPECT_TRUE(std::isnan(m[i])) << "element " << i;
    }
    for (const std::size_t i : {3, 7, 11, 12, 13, 14}) {
        EXPECT_EQ(m[i], 0) << "element " << i;
    }
    EXPECT_EQ(m[15], 1);
}

/// Each step of the rotation in its own statement and precision.
TEST(MatrixTest, RotationEqualsTheStepwiseFormulaToTheBit)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> axis(-3, 3);
    std::uniform_real_distribution<float> degrees(-720, 720);
    for (int n = 0; n < 2000; ++n) {
        const float x = axis(random);
        const float y = axis(random);
        const float z = axis(random);
        const float angle = degrees(random);

        volatile float xx = x * x;
        volatile float yy = y * y;
        volatile float zz = z * z;
        volatile float sum = xx + yy;
        sum = sum + zz;
        const volatile float length = static_cast<float>(std::sqrt(static_cast<double>(sum)));
        volatile float r = angle * std::bit_cast<float>(0x40490FDBu);
        r = r / 180.0f;
        const volatile float s = static_cast<float>(std::sin(static_cast<double>(r)));
        const volatile float c = static_cast<float>(std::cos(static_cast<double>(r)));
        const float u[3] = {x / length, y / length, z / length};
        // The skew part of element (i, j) is sign * u[k] * s.
        const int skewAxis[3][3] = {{-1, 2, 1}, {2, -1, 0}, {1, 0, -1}};
        const int skewSign[3][3] = {{0, -1, 1}, {1, 0, -1}, {-1, 1, 0}};
        Mat expected = IDENTITY;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                volatile float uu = u[i] * u[j];
                volatile float rest = 1.0f - uu;
                if (i == j) {
                    rest = rest * c;
                    expected[4 * j + i] = uu + rest;
                } else {
                    volatile float minor = 1.0f - c;
                    minor = uu * minor;
                    volatile float skew = u[skewAxis[i][j]] * s;
                    expected[4 * j + i] = skewSign[i][j] > 0 ? minor + skew : minor - skew;
                }
            }
        }
        Mat m;
        Matrix::rotation(m.data(), x, y, z, angle);
        for (std::size_t i = 0; i < 16; ++i) {
            ASSERT_THAT(m[i], SameBits(expected[i])) << "element " << i << " of case " << n;
        }
    }
}

TEST(MatrixTest, ProductEqualsTheOrderedSumToTheBit)
{
    std::mt19937 random(2);
    for (int n = 0; n < 500; ++n) {
        const Mat a = randomMatrix(random);
        const Mat b = randomMatrix(random);
        Mat product;
        Matrix::do_multiply(product.data(), a.data(), b.data());
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                volatile float sum = at(a, row, 0) * at(b, 0, column);
                for (std::size_t k = 1; k < 4; ++k) {
                    volatile float term = at(a, row, k) * at(b, k, column);
                    sum = sum + term;
                }
                ASSERT_THAT(at(product, row, column), SameBits(static_cast<float>(sum)));
            }
        }
    }
}

TEST(MatrixTest, ProductAppliesTheRightOperandFirst)
{
    Mat m;
    Mat t;
    Matrix::scale(m.data(), 2, 3, 4);
    Matrix::location(t.data(), 1, 1, 1);
    Matrix::do_multiply(m.data(), m.data(), t.data());
    EXPECT_EQ(m, (Mat{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 2, 3, 4, 1}));
}

TEST(MatrixTest, ProductMayBeWrittenIntoEitherOperand)
{
    std::mt19937 random(3);
    const Mat a = randomMatrix(random);
    const Mat b = randomMatrix(random);
    Mat apart;
    Matrix::do_multiply(apart.data(), a.data(), b.data());
    Mat intoA = a;
    Matrix::do_multiply(intoA.data(), intoA.data(), b.data());
    EXPECT_EQ(intoA, apart);
    Mat intoB = b;
    Matrix::do_multiply(intoB.data(), a.data(), intoB.data());
    EXPECT_EQ(intoB, apart);
}

TEST(MatrixTest, InverseOfATranslationIsTheOppositeTranslation)
{
    Mat m;
    Matrix::location(m.data(), 2, -3, 4.5f);
    Mat expected;
    Matrix::location(expected.data(), -2, 3, -4.5f);
    Matrix::do_inverse(m.data(), m.data());
    EXPECT_EQ(m, expected);
}

TEST(MatrixTest, InverseTimesTheMatrixIsTheIdentity)
{
    std::mt19937 random(4);
    for (int n = 0; n < 500; ++n) {
        const Mat m = randomMatrix(random);
        Mat inverse;
        Matrix::do_inverse(inverse.data(), m.data());
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                double sum = 0;
                for (std::size_t k = 0; k < 4; ++k) {
                    sum += static_cast<double>(at(m, row, k)) *
                           static_cast<double>(at(inverse, k, column));
                }
                ASSERT_NEAR(sum, row == column ? 1.0 : 0.0, 2e-6);
            }
        }
    }
}

TEST(MatrixTest, InverseOfASingularMatrixIsNotFinite)
{
    const Mat zero = filledWith(0);
    Mat inverse = filledWith(1);
    testing::internal::CaptureStdout();
    Matrix::do_inverse(inverse.data(), zero.data());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    for (const float e : inverse) {
        EXPECT_FALSE(std::isfinite(e));
    }
}

TEST(MatrixTest, DumpCopiesAndPrintsNothing)
{
    std::mt19937 random(5);
    const Mat source = randomMatrix(random);
    Mat copy = filledWith(0);
    testing::internal::CaptureStdout();
    Matrix::dump_matrix(copy.data(), source.data());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(copy, source);
}

TEST(MatrixTest, PrintOfTheIdentityWritesFourLinesThatEndWithABlank)
{
    testing::internal::CaptureStdout();
    Matrix::print(IDENTITY.data());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "1.000000 0.000000 0.000000 0.000000 \n"
                                                      "0.000000 1.000000 0.000000 0.000000 \n"
                                                      "0.000000 0.000000 1.000000 0.000000 \n"
                                                      "0.000000 0.000000 0.000000 1.000000 \n");
}

TEST(MatrixTest, PrintWritesRowsWithTheTranslationInTheLastColumn)
{
    Mat m;
    Matrix::location(m.data(), 5, 6, 7.25f);
    testing::internal::CaptureStdout();
    Matrix::print(m.data());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "1.000000 0.000000 0.000000 5.000000 \n"
                                                      "0.000000 1.000000 0.000000 6.000000 \n"
                                                      "0.000000 0.000000 1.000000 7.250000 \n"
                                                      "0.000000 0.000000 0.000000 1.000000 \n");
}

} // namespace
