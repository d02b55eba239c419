#include "ObjAPI.h"

#include "Bits.h"
#include "ObjModel.h"
#include "ObjReference.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace {

class ObjProcessTest : public ObjTest {
protected:
    struct Corner {
        std::array<float, 3> v;
        std::array<float, 2> t;
        std::array<float, 3> n;
    };

    /// A model of one surface with one triangle.
    static int triangle(const Corner (&corners)[3])
    {
        const int fi = obj_add_file(nullptr);
        obj_add_mtrl(fi);
        obj_add_surf(fi);
        for (const Corner& corner : corners) {
            const int vi = obj_add_vert(fi);
            obj_set_vert_v(fi, vi, corner.v.data());
            obj_set_vert_t(fi, vi, corner.t.data());
            obj_set_vert_n(fi, vi, corner.n.data());
        }
        const int vi[3] = {0, 1, 2};
        obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
        return fi;
    }

    /// A surface with one line of which the first vertex tells which surface it is.
    static void add_surface(int fi, int mi)
    {
        const int si = obj_add_surf(fi);
        const int mark[2] = {si, 0};
        obj_set_surf(fi, si, mi);
        obj_set_line(fi, si, obj_add_line(fi, si), mark);
    }

    static std::vector<int> marks(int fi)
    {
        std::vector<int> found;
        for (int si = 0; si < obj_num_surf(fi); ++si) {
            int mark[2];
            obj_get_line(fi, si, 0, mark);
            found.push_back(mark[0]);
        }
        return found;
    }

    /// One material and one surface of that material for each alpha.
    static int surfaces(const std::vector<float>& alphas)
    {
        const int fi = obj_add_file(nullptr);
        for (const float alpha : alphas) {
            const int mi = obj_add_mtrl(fi);
            const float c[4] = {0, 0, 0, alpha};
            obj_set_mtrl_c(fi, mi, 0, c);
            add_surface(fi, mi);
        }
        return fi;
    }
};

// ---- obj_mini_file ------------------------------------------------------------------------------

TEST_F(ObjProcessTest, MiniLeavesNothingOfAnEmptySurface)
{
    const int fi = obj_add_file(nullptr);
    obj_add_mtrl(fi);
    obj_add_surf(fi);
    obj_mini_file(fi);
    EXPECT_EQ(obj_num_surf(fi), 0);
    EXPECT_EQ(obj_num_mtrl(fi), 0);
}

TEST_F(ObjProcessTest, MiniKeepsSurfacesWithTrianglesOrLinesAndTheirMaterials)
{
    const int fi = obj_add_file(nullptr);
    for (const char* name : {"a", "b", "c", "d"}) {
        obj_set_mtrl_name(fi, obj_add_mtrl(fi), name);
        obj_add_surf(fi);
    }
    obj_set_surf(fi, 0, 3);
    obj_set_surf(fi, 1, 1);
    obj_set_surf(fi, 2, 3);
    obj_set_surf(fi, 3, 0);
    obj_add_poly(fi, 0);
    obj_add_line(fi, 1);
    obj_mini_file(fi);
    ASSERT_EQ(obj_num_surf(fi), 2);
    ASSERT_EQ(obj_num_mtrl(fi), 2);
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "b");
    EXPECT_STREQ(obj_get_mtrl_name(fi, 1), "d");
    EXPECT_EQ(obj_get_surf(fi, 0), 1);
    EXPECT_EQ(obj_get_surf(fi, 1), 0);
}

TEST_F(ObjProcessTest, MiniOnRandomModelsLeavesWhatThePlainFormLeaves)
{
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        const int fi = obj_add_file(nullptr);
        const int materials = static_cast<int>(random() % 8);
        for (int i = 0; i < materials; ++i) {
            obj_set_mtrl_name(fi, obj_add_mtrl(fi), std::to_string(i).c_str());
        }
        for (unsigned i = random() % 8; i > 0; --i) {
            const int si = obj_add_surf(fi);
            obj_set_surf(fi, si, static_cast<int>(random() % 12) - 2); // some are not there
            if (random() % 2 == 0) {
                obj_add_poly(fi, si);
            }
        }
        Model expected = model_of(fi);
        reference::mini(expected);
        obj_mini_file(fi);
        ASSERT_EQ(describe(model_of(fi)), describe(expected)) << "round " << round;
    }
}

// ---- obj_proc_file ------------------------------------------------------------------------------

TEST_F(ObjProcessTest, TheTangentFollowsTheSecondTextureCoordinate)
{
    // t[1] is 0 along the first edge and 1 along the second: the tangent is the first edge. The
    // first texture coordinate says otherwise, and does not count.
    const int fi = triangle({{{0, 0, 0}, {0, 0}, {0, 0, 2}},
                             {{2, 0, 0}, {0, 0}, {0, 0, 2}},
                             {{0, 3, 0}, {9, 1}, {0, 0, 2}}});
    obj_proc_file(fi);
    for (int vi = 0; vi < 3; ++vi) {
        EXPECT_THAT(obj::vert(fi, vi)->n, testing::ElementsAre(0, 0, 1));
        EXPECT_THAT(obj::vert(fi, vi)->u, testing::ElementsAre(1, 0, 0));
    }
}

TEST_F(ObjProcessTest, TheTangentIsPerpendicularToTheNormal)
{
    // The edge (2, 0, 0) under the normal (3, 0, 4) / 5 leaves (16, 0, -12) / 20.
    const int fi = triangle({{{0, 0, 0}, {0, 0}, {3, 0, 4}},
                             {{2, 0, 0}, {0, 0}, {3, 0, 4}},
                             {{0, 3, 0}, {0, 1}, {3, 0, 4}}});
    obj_proc_file(fi);
    EXPECT_NEAR(obj::vert(fi, 0)->n[0], 0.6, 1e-6);
    EXPECT_NEAR(obj::vert(fi, 0)->n[2], 0.8, 1e-6);
    EXPECT_NEAR(obj::vert(fi, 0)->u[0], 0.8, 1e-6);
    EXPECT_NEAR(obj::vert(fi, 0)->u[1], 0, 1e-6);
    EXPECT_NEAR(obj::vert(fi, 0)->u[2], -0.6, 1e-6);
}

TEST_F(ObjProcessTest, ANormalOfLengthZeroBecomesNaN)
{
    const int fi =
        triangle({{{0, 0, 0}, {0, 0}, {}}, {{1, 0, 0}, {0, 0}, {}}, {{0, 1, 0}, {0, 1}, {}}});
    obj_proc_file(fi);
    for (const float n : obj::vert(fi, 1)->n) {
        EXPECT_TRUE(std::isnan(n));
    }
}

TEST_F(ObjProcessTest, RandomTrianglesAreTheSameToTheBit)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<float> number(-5, 5);
    const int fi = obj_add_file(nullptr);
    obj_add_mtrl(fi);
    obj_add_surf(fi);
    for (int vi = 0; vi < 200; ++vi) {
        obj_add_vert(fi);
        for (float* group : {obj::vert(fi, vi)->v, obj::vert(fi, vi)->n}) {
            for (int i = 0; i < 3; ++i) {
                group[i] = number(random);
            }
        }
        obj::vert(fi, vi)->t[0] = number(random);
        obj::vert(fi, vi)->t[1] = number(random);
    }
    for (int pi = 0; pi < 400; ++pi) {
        int vi[3];
        for (int& index : vi) {
            index = static_cast<int>(random() % 203) - 1; // some are not there
        }
        obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
    }
    Model expected = model_of(fi);
    reference::norm(expected);
    obj_norm_file(fi);
    EXPECT_EQ(describe(model_of(fi)), describe(expected));
    reference::proc(expected);
    obj_proc_file(fi);
    EXPECT_EQ(describe(model_of(fi)), describe(expected));
}

TEST_F(ObjProcessTest, SurfacesAreOrderedByTheAlphaOfTheirMaterials)
{
    const int fi = surfaces({0.5f, 1.0f, 0.2f});
    obj_proc_file(fi);
    EXPECT_THAT(marks(fi), testing::ElementsAre(1, 0, 2));
    EXPECT_EQ(obj_get_surf(fi, 0), 1);
}

TEST_F(ObjProcessTest, TheOrderOfEqualAlphasIsThatOfTheExchangeSort)
{
    // By hand: 0 and 2 change places (2 1 0 3), then 1 and 3 (2 3 0 1).
    const int fi = surfaces({0.5f, 0.5f, 1.0f, 1.0f});
    obj_proc_file(fi);
    EXPECT_THAT(marks(fi), testing::ElementsAre(2, 3, 0, 1));
    // 0 changes with 2 (2 1 0): the surfaces with 0.5 have changed their order.
    const int other = surfaces({0.5f, 0.5f, 1.0f});
    obj_proc_file(other);
    EXPECT_THAT(marks(other), testing::ElementsAre(2, 1, 0));
}

TEST_F(ObjProcessTest, RandomAlphasEndInTheOrderOfTheExchangeSort)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<float> values = {0, -0.0f, 0.25f, 0.5f, 1, -1, inf, -inf, nan, 0.75f};
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t distinct = 1 + random() % values.size();
        std::vector<float> alphas(random() % 40);
        for (float& alpha : alphas) {
            alpha = values[random() % distinct];
        }
        std::vector<int> expected(alphas.size());
        for (std::size_t i = 0; i < alphas.size(); ++i) {
            expected[i] = static_cast<int>(i);
        }
        const std::vector<float> given = alphas;
        for (std::size_t i = 0; i < alphas.size(); ++i) {
            for (std::size_t j = i + 1; j < alphas.size(); ++j) {
                if (alphas[j] > alphas[i]) {
                    std::swap(alphas[i], alphas[j]);
                    std::swap(expected[i], expected[j]);
                }
            }
        }
        const int fi = surfaces(given);
        obj_proc_file(fi);
        ASSERT_EQ(marks(fi), expected) << testing::PrintToString(given);
        obj_del_file(fi);
    }
}

TEST_F(ObjProcessTest, ASurfaceWithoutMaterialCountsAsOpaque)
{
    const int fi = surfaces({0.5f, 2.0f});
    add_surface(fi, 7);
    add_surface(fi, -1);
    obj_proc_file(fi);
    EXPECT_THAT(marks(fi), testing::ElementsAre(1, 2, 3, 0));
}

TEST_F(ObjProcessTest, AHundredThousandSurfacesAreOrderedAtOnce)
{
    // A quadratic sort would need five thousand million steps.
    std::vector<float> alphas;
    for (int i = 0; i < 100000; ++i) {
        alphas.push_back(static_cast<float>(i * 7919 % 331));
    }
    const int fi = surfaces(alphas);
    obj_proc_file(fi);
    float last = 1000;
    for (int si = 0; si < obj_num_surf(fi); ++si) {
        float c[4];
        obj_get_mtrl_c(fi, obj_get_surf(fi, si), 0, c);
        ASSERT_LE(c[3], last);
        last = c[3];
    }
}

// ---- obj_norm_file ------------------------------------------------------------------------------

TEST_F(ObjProcessTest, NormAddsTheFirstComponentInPlaceOfTheThird)
{
    // A triangle in the plane z = 0 facing +z: its normal (0, 0, 1) adds (0, 0, 0).
    const int flat =
        triangle({{{0, 0, 0}, {}, {}}, {{1, 0, 0}, {}, {}}, {{0, 1, 0}, {}, {5, 6, 7}}});
    obj_norm_file(flat);
    EXPECT_THAT(obj::vert(flat, 0)->n, testing::ElementsAre(0, 0, 0));
    EXPECT_THAT(obj::vert(flat, 2)->n, testing::ElementsAre(5, 6, 7));

    // One facing +x adds (1, 0, 1).
    const int upright =
        triangle({{{0, 0, 0}, {}, {}}, {{0, 1, 0}, {}, {}}, {{0, 0, 1}, {}, {5, 6, 7}}});
    obj_norm_file(upright);
    EXPECT_THAT(obj::vert(upright, 0)->n, testing::ElementsAre(1, 0, 1));
    EXPECT_THAT(obj::vert(upright, 2)->n, testing::ElementsAre(6, 6, 8));
}

TEST_F(ObjProcessTest, ATriangleWithoutItsVerticesIsPassedOver)
{
    const int fi = triangle({{{0, 0, 0}, {}, {}}, {{0, 1, 0}, {}, {}}, {{0, 0, 1}, {}, {}}});
    for (const int bad : {3, -1, INT_MAX, INT_MIN}) {
        const int vi[3] = {0, 1, bad};
        obj_set_poly(fi, 0, 0, vi);
        obj_norm_file(fi);
        EXPECT_THAT(obj::vert(fi, 0)->n, testing::ElementsAre(0, 0, 0));
        obj_proc_file(fi);
        for (int i = 0; i < 3; ++i) {
            const float zero[3] = {};
            obj_set_vert_n(fi, i, zero);
        }
    }
}

TEST_F(ObjProcessTest, TheUnitNormalIsOnTheCounterClockwiseSide)
{
    const float a[3] = {0, 0, 0};
    const float b[3] = {2, 0, 0};
    const float c[3] = {0, 5, 0};
    float n[3];
    obj::normal(n, a, b, c);
    EXPECT_THAT(n, testing::ElementsAre(0, 0, 1));
    obj::normal(n, a, c, b);
    EXPECT_THAT(n, testing::ElementsAre(0, 0, -1));
    obj::cross(n, b, c);
    EXPECT_THAT(n, testing::ElementsAre(0, 0, 10));
}

} // namespace
