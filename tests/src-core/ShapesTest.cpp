#include "Shapes.h"

#include "GLTest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <dlfcn.h>
#include <vector>

namespace {

using Point = std::array<float, 3>;
using Outline = std::vector<Point>;

/// A primitive between glBegin and glEnd.
struct Strip {
    GLenum mode;
    int vertices;

    bool operator==(const Strip&) const = default;
};
std::vector<Strip> strips;

/// \return GL's own function \p name
template<typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// Stand before GL's own: feedback breaks strips up.
void glBegin(GLenum mode)
{
    static const auto call = next<void(GLenum)>("glBegin");
    strips.push_back({mode, 0});
    call(mode);
}

void glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    static const auto call = next<void(GLfloat, GLfloat, GLfloat)>("glVertex3f");
    ++strips.back().vertices;
    call(x, y, z);
}

namespace {

constexpr std::array<GLenum, 3> GENERATORS = {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R};

/// Shapes are looked at through the texture coordinates of feedback, which come back as exactly
/// what they went in; polygons come back as the lines around them.
class ShapesTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        // Feedback clips at the view volume: make it larger than every shape here.
        glMatrixMode(GL_PROJECTION);
        glOrtho(-100, 100, -100, 100, -100, 100);
        glMatrixMode(GL_MODELVIEW);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        // Coordinates are generated only for a texture that is complete.
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        const unsigned char texel[4] = {};
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel);
        glEnable(GL_TEXTURE_2D);
    }
    void TearDown() override
    {
        generateNothing();
        glDeleteTextures(1, &texture);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glFrontFace(GL_CCW);
        GLTest::TearDown();
    }

    static void generateNothing()
    {
        for (const GLenum generator : GENERATORS) {
            glDisable(generator);
        }
    }

    /// Makes the texture coordinates out of the vertices (GL_OBJECT_LINEAR) or out of the normals
    /// (GL_NORMAL_MAP).
    static void generateFrom(GLint mode)
    {
        constexpr std::array<GLenum, 3> COORDINATES = {GL_S, GL_T, GL_R};
        for (std::size_t i = 0; i < 3; ++i) {
            float plane[4] = {0, 0, 0, 0};
            plane[i] = 1;
            glTexGeni(COORDINATES[i], GL_TEXTURE_GEN_MODE, mode);
            glTexGenfv(COORDINATES[i], GL_OBJECT_PLANE, plane);
            glEnable(GENERATORS[i]);
        }
    }

    static std::vector<Feedback::Primitive> drawn(const Geometry& g)
    {
        return Feedback::of([&g] { glCallList(g.list); });
    }

    static Point coordinate(const Feedback::Vertex& v)
    {
        return {v.texture[0], v.texture[1], v.texture[2]};
    }

    /// The ends of each line.
    static std::vector<Outline> lines(const Geometry& g)
    {
        std::vector<Outline> all;
        for (const Feedback::Primitive& line : drawn(g)) {
            EXPECT_EQ(line.vertices.size(), 2u);
            all.push_back({coordinate(line.vertices.front()), coordinate(line.vertices.back())});
        }
        return all;
    }

    /// The corners of each quad, once around.
    static std::vector<Outline> quads(const Geometry& g)
    {
        std::vector<Outline> all;
        for (const Outline& side : lines(g)) {
            if (all.empty() || all.back().size() == 4) {
                all.emplace_back();
            }
            all.back().push_back(side.front());
        }
        return all;
    }

    GLuint texture = 0;
};

/// The same outlines, each starting at the same corner whatever corner GL started at.
std::vector<Outline> aligned(std::vector<Outline> outlines)
{
    for (Outline& outline : outlines) {
        std::rotate(outline.begin(), std::min_element(outline.begin(), outline.end()),
                    outline.end());
    }
    return outlines;
}

TEST_F(ShapesTest, ThePlaneIsOneTexturedSquareFromTheOrigin)
{
    Geometry g{0, nullptr};
    Shapes::plane(&g, 2);
    EXPECT_STREQ(g.name, "plane");
    EXPECT_TRUE(glIsList(g.list));
    EXPECT_EQ(aligned(quads(g)),
              (std::vector<Outline>{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}}));
    generateFrom(GL_OBJECT_LINEAR);
    EXPECT_EQ(aligned(quads(g)),
              (std::vector<Outline>{{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}}));
}

TEST_F(ShapesTest, ThePlaneIsCounterClockwise)
{
    Geometry g{0, nullptr};
    Shapes::plane(&g, 2);
    glEnable(GL_CULL_FACE);
    EXPECT_EQ(drawn(g).size(), 4u);
    glFrontFace(GL_CW);
    EXPECT_EQ(drawn(g).size(), 0u);
}

TEST_F(ShapesTest, CompilingDrawsNothingAndClosesTheList)
{
    Geometry g{0, nullptr};
    const auto primitives = Feedback::of([&g] {
        Shapes::plane(&g, 1);
        Shapes::arrow(&g, 1);
        Shapes::sphere(&g, 1, 8);
    });
    EXPECT_TRUE(primitives.empty());
    EXPECT_EQ(getInteger(GL_LIST_INDEX), 0);
}

TEST_F(ShapesTest, TheArrowIsThreeLinesThatPointUp)
{
    const float s = 0.7f;
    const auto barb = static_cast<float>(0.15 * static_cast<double>(s));
    const Point foot = {0, -0.5f * s, 0};
    const Point tip = {0, 0.5f * s, 0};
    Geometry g{0, nullptr};
    Shapes::arrow(&g, s);
    EXPECT_STREQ(g.name, "arrow");
    generateFrom(GL_OBJECT_LINEAR);
    EXPECT_EQ(lines(g),
              (std::vector<Outline>{
                  {foot, tip}, {tip, {barb, 0.25f * s, 0}}, {tip, {-barb, 0.25f * s, 0}}}));
}

/// What a sphere's quads are expected to be, strip after strip.
struct Sphere {
    std::vector<Outline> normals;
    std::vector<Outline> vertices;
    std::vector<Outline> textures;

    Sphere(double r, int n)
    {
        for (int j = 0; j < n / 2; ++j) {
            for (int i = 0; i < n; ++i) {
                // A quad of a strip joins two pairs of corners and goes once around them.
                for (auto* outlines : {&normals, &vertices, &textures}) {
                    outlines->emplace_back();
                }
                addCorner(r, n, i, j + 1);
                addCorner(r, n, i, j);
                addCorner(r, n, i + 1, j);
                addCorner(r, n, i + 1, j + 1);
            }
        }
    }

    void addCorner(double r, int n, int i, int row)
    {
        const double latitude = row * 6.283185 / n - 1.570796;
        const double longitude = i * 6.283185 / n;
        const double x = std::cos(latitude) * std::cos(longitude);
        const double y = std::sin(latitude);
        const double z = std::cos(latitude) * std::sin(longitude);
        normals.back().push_back(
            {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
        vertices.back().push_back(
            {static_cast<float>(r * x), static_cast<float>(r * y), static_cast<float>(r * z)});
        textures.back().push_back({static_cast<float>(i) / static_cast<float>(n),
                                   static_cast<float>(2 * row) / static_cast<float>(n), 0});
    }
};

TEST_F(ShapesTest, ASphereIsStripsOfQuadsFromPoleToPole)
{
    for (const int n : {4, 5, 8, 13}) {
        const Sphere expected(1.5, n);
        Geometry g{0, nullptr};
        strips.clear();
        Shapes::sphere(&g, 1.5f, n);
        EXPECT_STREQ(g.name, "sphere");
        EXPECT_EQ(strips, std::vector<Strip>(static_cast<std::size_t>(n / 2),
                                             Strip{GL_QUAD_STRIP, 2 * (n + 1)}));
        generateNothing();
        // n/2 strips of 2 * (n + 1) vertices make n quads each.
        ASSERT_EQ(quads(g).size(), static_cast<std::size_t>(n / 2 * n));
        EXPECT_TRUE(aligned(quads(g)) == aligned(expected.textures)) << n;
        generateFrom(GL_OBJECT_LINEAR);
        EXPECT_TRUE(aligned(quads(g)) == aligned(expected.vertices)) << n;
        generateFrom(GL_NORMAL_MAP);
        EXPECT_TRUE(aligned(quads(g)) == aligned(expected.normals)) << n;
    }
}

TEST_F(ShapesTest, TheTextureOfASphereEndsAtItsLastStrip)
{
    Geometry even{0, nullptr};
    Geometry odd{0, nullptr};
    Shapes::sphere(&even, 1, 8);
    Shapes::sphere(&odd, 1, 9);
    const auto top = [](const std::vector<Outline>& outlines) {
        float highest = 0;
        for (const Outline& outline : outlines) {
            for (const Point& point : outline) {
                highest = std::max(highest, point[1]);
            }
        }
        return highest;
    };
    EXPECT_EQ(top(quads(even)), 1);
    EXPECT_EQ(top(quads(odd)), 8.0f / 9.0f);
}

TEST_F(ShapesTest, TheSignsOfRadiusAndCountDoNotMatter)
{
    Geometry plain{0, nullptr};
    Geometry signedCount{0, nullptr};
    Geometry signedRadius{0, nullptr};
    Shapes::sphere(&plain, 1, 8);
    Shapes::sphere(&signedCount, 1, -8);
    Shapes::sphere(&signedRadius, -1, 8);
    generateFrom(GL_OBJECT_LINEAR);
    const auto expected = quads(plain);
    EXPECT_EQ(expected.size(), 32u);
    EXPECT_TRUE(quads(signedCount) == expected);
    EXPECT_TRUE(quads(signedRadius) == expected);
}

TEST_F(ShapesTest, ADegenerateSphereIsOnePointAndLeavesItsListOpen)
{
    struct Case {
        float r;
        int n;
    };
    for (const auto& [r, n] : {Case{1, 3}, {0, 8}, {-0.0f, 8}, {2, -3}, {1, 0}}) {
        Geometry g{0, nullptr};
        Shapes::sphere(&g, r, n);
        EXPECT_EQ(getInteger(GL_LIST_INDEX), static_cast<GLint>(g.list));
        EXPECT_EQ(getInteger(GL_LIST_MODE), GL_COMPILE);
        glEndList();
        EXPECT_STREQ(g.name, "sphere");
        generateFrom(GL_OBJECT_LINEAR);
        const auto primitives = drawn(g);
        ASSERT_EQ(primitives.size(), 1u);
        EXPECT_EQ(primitives[0].token, static_cast<GLenum>(GL_POINT_TOKEN));
        EXPECT_EQ(coordinate(primitives[0].vertices[0]), (Point{0, 0, 0}));
    }
}

TEST_F(ShapesTest, TriangleCircleAndCubeDoNothing)
{
    const char name[] = "mine";
    Geometry g{7, name};
    Shapes::triangle(&g, 1);
    Shapes::circle(&g, 1);
    Shapes::cube(&g, 1);
    EXPECT_EQ(g.list, 7u);
    EXPECT_EQ(g.name, name);
    EXPECT_EQ(getInteger(GL_LIST_INDEX), 0);
}

TEST_F(ShapesTest, EveryShapeGetsAListOfItsOwn)
{
    Geometry first{0, nullptr};
    Geometry second{0, nullptr};
    Shapes::plane(&first, 1);
    Shapes::plane(&second, 1);
    EXPECT_NE(first.list, second.list);
}

} // namespace
