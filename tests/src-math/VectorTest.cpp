#include "Vector.h"

#include "Bits.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();

void expectComponents(const Vec3& v, float x, float y, float z)
{
    EXPECT_THAT(v.x, SameBits(x));
    EXPECT_THAT(v.y, SameBits(y));
    EXPECT_THAT(v.z, SameBits(z));
}

class RandomVectors {
public:
    explicit RandomVectors(unsigned seed) : random(seed) {}
    Vec3 next()
    {
        const float x = component(random);
        const float y = component(random);
        const float z = component(random);
        return {x, y, z};
    }

private:
    std::mt19937 random;
    std::uniform_real_distribution<float> component{-20, 20};
};

/// x*x + y*y + z*z with every product and sum rounded to single precision.
float squaredLength(const Vec3& v)
{
    volatile float xx = v.x * v.x;
    volatile float yy = v.y * v.y;
    volatile float zz = v.z * v.z;
    volatile float sum = xx + yy;
    sum = sum + zz;
    return sum;
}

TEST(VectorTest, ConstructsZeroGivenAndCopied)
{
    expectComponents(Vec3(), 0, 0, 0);
    const Vec3 v(1, -2, 3);
    expectComponents(v, 1, -2, 3);
    const Vec3 w(v);
    expectComponents(w, 1, -2, 3);
}

TEST(VectorTest, Arithmetic)
{
    const Vec3 a(1, 2, 3);
    const Vec3 b(10, -20, 0.5f);
    expectComponents(a + b, 11, -18, 3.5f);
    expectComponents(a - b, -9, 22, 2.5f);
    expectComponents(-a, -1, -2, -3);
    expectComponents(a * 0.5f, 0.5f, 1, 1.5f);
    expectComponents(b / 4, 2.5f, -5, 0.125f);
}

TEST(VectorTest, DivisionByZeroIsUnchecked)
{
    expectComponents(Vec3(1, -1, 0) / 0, INF, -INF, NAN);
}

TEST(VectorTest, LengthSumsInSingleAndTakesTheRootInDoublePrecision)
{
    RandomVectors vectors(1);
    for (int n = 0; n < 2000; ++n) {
        const Vec3 v = vectors.next();
        const auto root = static_cast<float>(std::sqrt(static_cast<double>(squaredLength(v))));
        ASSERT_THAT(v.length(), SameBits(root));
    }
}

TEST(VectorTest, NormalizeLeavesAZeroVector)
{
    Vec3 zero;
    zero.normalize();
    expectComponents(zero, 0, 0, 0);
    Vec3 v(3, 0, 4);
    v.normalize();
    expectComponents(v, 3.0f / 5.0f, 0, 4.0f / 5.0f);
}

TEST(VectorTest, CopyAndSet)
{
    Vec3 v;
    v.copy(Vec3(1, 2, 3));
    expectComponents(v, 1, 2, 3);
    v.set(4, 5, 6);
    expectComponents(v, 4, 5, 6);
}

TEST(VectorTest, LimitBoundsTheLargestComponentNotTheLength)
{
    Vec3 v(10, -14, 2);
    v.limit(7);
    expectComponents(v, 5, -7, 1);
    Vec3 atTheBound(7, 7, 7);
    atTheBound.limit(7);
    expectComponents(atTheBound, 7, 7, 7);
    Vec3 byZ(1, 2, -8);
    byZ.limit(4);
    expectComponents(byZ, 0.5f, 1, -4);
    Vec3 byX(9, 1, 1);
    byX.limit(3);
    const float f = 3.0f / 9.0f;
    expectComponents(byX, 9 * f, f, f);
}

TEST(VectorTest, RightShiftTruncatesAndKeepsTheSign)
{
    Vec3 v(5.9f, -3.2f, 1.0f);
    v.rshift(1);
    expectComponents(v, 2, -2, 0);
}

TEST(VectorTest, LeftShiftTruncates)
{
    Vec3 v(1.5f, -1.0f, 0);
    v.lshift(2);
    expectComponents(v, 4, -4, 0);
}

TEST(VectorTest, ShiftsAreDefinedForEveryCountAndComponent)
{
    Vec3 v(5, -5, NAN);
    v.rshift(40);
    expectComponents(v, 0, -1, 0);
    v.set(5, -5, 7);
    v.lshift(32);
    expectComponents(v, 0, 0, 0);
    v.set(5, -5, 7);
    v.lshift(31);
    expectComponents(v, -2147483648.0f, -2147483648.0f, -2147483648.0f);
    v.set(5, -5, 7);
    v.rshift(-3);
    v.lshift(-3);
    expectComponents(v, 5, -5, 7);
    v.set(INF, -INF, 2147483648.0f);
    v.rshift(0);
    expectComponents(v, 2147483648.0f, -2147483648.0f, 2147483648.0f);
}

TEST(VectorTest, IsNonzeroIsExact)
{
    EXPECT_FALSE(Vec3(0, -0.0f, 0).isnonzero());
    EXPECT_TRUE(Vec3(0, 0, 1e-30f).isnonzero());
    EXPECT_TRUE(Vec3(0, -1, 0).isnonzero());
    EXPECT_TRUE(Vec3(NAN, 0, 0).isnonzero());
}

TEST(VectorTest, RotateTakesTheNewXForTheNewY)
{
    Vec3 v(1, 0, 5);
    v.rotate(90);
    const float radians = 90 * std::bit_cast<float>(0x3C8EFA2Du);
    const auto co = static_cast<float>(std::cos(static_cast<double>(radians)));
    const auto si = static_cast<float>(std::sin(static_cast<double>(radians)));
    expectComponents(v, co, -si * co, 5);
    EXPECT_NEAR(v.y, 0, 1e-4) << "a true rotation would give -1";

    RandomVectors vectors(2);
    for (int n = 0; n < 500; ++n) {
        const Vec3 before = vectors.next();
        Vec3 after = before;
        const float degrees = vectors.next().x * 30;
        after.rotate(degrees);
        volatile float angle = degrees * std::bit_cast<float>(0x3C8EFA2Du);
        const auto c = static_cast<float>(std::cos(static_cast<double>(angle)));
        const auto s = static_cast<float>(std::sin(static_cast<double>(angle)));
        volatile float xc = before.x * c;
        volatile float ys = before.y * s;
        volatile float x = xc + ys;
        volatile float yc = before.y * c;
        volatile float xs = -s * x;
        volatile float y = yc + xs;
        expectComponents(after, x, y, before.z);
    }
}

TEST(VectorTest, EqualIsExact)
{
    const Vec3 v(1, 2, 3);
    EXPECT_TRUE(Vec3::Equal(v, Vec3(1, 2, 3)));
    EXPECT_FALSE(Vec3::Equal(v, Vec3(std::nextafter(1.0f, 2.0f), 2, 3)));
    EXPECT_FALSE(Vec3::Equal(v, Vec3(1, std::nextafter(2.0f, 0.0f), 3)));
    EXPECT_FALSE(Vec3::Equal(v, Vec3(1, 2, std::nextafter(3.0f, 9.0f))));
}

TEST(VectorTest, ProductsOfVectors)
{
    EXPECT_EQ(Vec3::DotProduct(Vec3(1, 2, 3), Vec3(4, -5, 6)), 12);
    expectComponents(Vec3::CrossProduct(Vec3(1, 0, 0), Vec3(0, 1, 0)), 0, 0, 1);
    expectComponents(Vec3::CrossProduct(Vec3(1, 2, 3), Vec3(4, 5, 6)), -3, 6, -3);
}

TEST(VectorTest, DistanceSquaresInDoublePrecision)
{
    RandomVectors vectors(3);
    int differsFromSingle = 0;
    for (int n = 0; n < 2000; ++n) {
        const Vec3 a = vectors.next();
        const Vec3 b = vectors.next();
        volatile float dx = a.x - b.x;
        volatile float dy = a.y - b.y;
        volatile float dz = a.z - b.z;
        const double x = dx;
        const double y = dy;
        const double z = dz;
        const auto expected = static_cast<float>(std::sqrt(x * x + y * y + z * z));
        ASSERT_THAT(Vec3::EuclDistance(a, b), SameBits(expected));
        differsFromSingle += bits(expected) != bits((a - b).length());
    }
    EXPECT_GT(differsFromSingle, 0) << "the two precisions must be told apart by these vectors";
}

TEST(VectorTest, MinCompDistIsTheLargestComponentDifference)
{
    EXPECT_EQ(Vec3::MinCompDist(Vec3(0, 0, 0), Vec3(1, -3, 2)), 3);
    EXPECT_EQ(Vec3::MinCompDist(Vec3(4, 0, 0), Vec3(0, 1, 2)), 4);
    EXPECT_EQ(Vec3::MinCompDist(Vec3(0, 0, -9), Vec3(1, 1, 0)), 9);
}

TEST(VectorTest, AngleBetweenIsNeitherClampedNorChecked)
{
    EXPECT_NEAR(Vec3::AngleBetween(Vec3(1, 0, 0), Vec3(0, 2, 0)), 1.5707963f, 1e-6f);
    EXPECT_NEAR(Vec3::AngleBetween(Vec3(1, 0, 0), Vec3(-1, 0, 0)), 3.1415927f, 1e-6f);
    EXPECT_TRUE(std::isnan(Vec3::AngleBetween(Vec3(0, 0, 0), Vec3(1, 0, 0))));

    RandomVectors vectors(4);
    int beyondOne = 0;
    for (int n = 0; n < 2000; ++n) {
        Vec3 a = vectors.next();
        a.normalize();
        volatile float dot = squaredLength(a);
        volatile float lengths = a.length() * a.length();
        volatile float cosine = dot / lengths;
        const auto expected = static_cast<float>(std::acos(static_cast<double>(cosine)));
        ASSERT_THAT(Vec3::AngleBetween(a, a), SameBits(expected));
        beyondOne += std::isnan(expected);
    }
    EXPECT_GT(beyondOne, 0) << "rounding must push some cosine beyond 1";
}

} // namespace
