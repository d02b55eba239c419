#include "ObjAPI.h"

#include "ObjReading.h"

#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using Triangle = std::array<int, 3>;
using Line = std::array<int, 2>;

constexpr const char* SQUARE = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

// ---- Faces --------------------------------------------------------------------------------------

TEST_F(ObjReaderTest, AFaceOfFourCornersIsTwoTriangles)
{
    const Model m = model(std::string(SQUARE) + "f 1 2 3 4\n");
    ASSERT_EQ(m.surfaces.size(), 1U);
    EXPECT_THAT(m.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}, Triangle{0, 2, 3}));
    ASSERT_EQ(m.vertices.size(), 4U);
    EXPECT_THAT(m.vertices[2].v, ElementsAre(1, 1, 0));
    EXPECT_EQ(m.materials.size(), 1U);
}

TEST_F(ObjReaderTest, FacesOfFewerThanThreeCornersGiveNoTriangles)
{
    const Model m = model(std::string(SQUARE) + "f\nf 1\nf 2 3\ns 1\nf 4\nf 1 2\n");
    EXPECT_THAT(m.surfaces, testing::IsEmpty());
    EXPECT_EQ(m.vertices.size(), 6U); // groups 0 and 1: 1 2 3 and 4 1 2
    for (const Model::Vertex& vertex : m.vertices) {
        EXPECT_TRUE(std::isnan(vertex.n[0])); // no normal was added
    }
}

TEST_F(ObjReaderTest, NegativeIndicesCountFromTheEndSoFar)
{
    const Model m = model("v 9 9 9\nv 1 0 0\nv 2 0 0\nv 3 0 0\nf -3 -2 -1\nv 4 0 0\nf -3 -2 -1\n");
    EXPECT_THAT(m.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}, Triangle{1, 2, 3}));
    EXPECT_EQ(m.vertices[0].v[0], 1);
    EXPECT_EQ(m.vertices[3].v[0], 4);
}

TEST_F(ObjReaderTest, EveryCornerFormIsRead)
{
    const std::string tables = "v 1 1 1\nvt 0.25 0.5\nvt 0.75 1\nvn 0 0 2\nvn 0 3 0\n";
    const auto vertex = [&](const std::string& corner) {
        const Model m = model(tables + "f " + corner + " 1 1\n");
        return m.vertices.at(0);
    };
    for (const char* all : {"1/2/1", "-1/-1/-2", "+1/+2/+1", "1/2/1/9", "1/2/1x", "01/02/01"}) {
        EXPECT_THAT(vertex(all).t, ElementsAre(0.75f, 1)) << all;
        EXPECT_THAT(vertex(all).n, ElementsAre(0, 0, 1)) << all;
        EXPECT_THAT(vertex(all).v, ElementsAre(1, 1, 1)) << all;
    }
    for (const char* texture : {"1/2", "1/2/", "1/2/x", "1/2//1", "1/2x/1"}) {
        EXPECT_THAT(vertex(texture).t, ElementsAre(0.75f, 1)) << texture;
        EXPECT_TRUE(std::isnan(vertex(texture).n[0])) << texture;
    }
    for (const char* normal : {"1//1", "1//1/7", "1//1.5"}) {
        EXPECT_THAT(vertex(normal).t, ElementsAre(0, 0)) << normal;
        EXPECT_THAT(vertex(normal).n, ElementsAre(0, 0, 1)) << normal;
    }
    for (const char* position : {"1", "1/", "1//", "1/x/1", "1///1", "1.7", "1x"}) {
        EXPECT_THAT(vertex(position).t, ElementsAre(0, 0)) << position;
        EXPECT_TRUE(std::isnan(vertex(position).n[0])) << position;
        EXPECT_THAT(vertex(position).v, ElementsAre(1, 1, 1)) << position;
    }
}

TEST_F(ObjReaderTest, AWordThatIsNoCornerEndsTheFace)
{
    const Model m = model(std::string(SQUARE) + "f 1 2 3 # 4\nf 1 2 x 3\nf / 1 2 3\nf 2 3 4 - 1\n");
    EXPECT_THAT(m.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}, Triangle{1, 2, 3}));
}

TEST_F(ObjReaderTest, IndicesThatAreNotThereGiveNewVerticesOfZeros)
{
    const Model m = model("v 1 1 1\nvt 1 1\nvn 0 0 1\n"
                          "f 0/0/0 2/2/2 -2/-2/-2\n"
                          "f 2/2/2 99999999999/-99999999999/2147483647 0\n"
                          "s 1\n"
                          "f 2147483647 -2147483648 0\n");
    EXPECT_THAT(m.surfaces[0].triangles,
                ElementsAre(Triangle{0, 1, 2}, Triangle{3, 4, 5}, Triangle{6, 7, 8}));
    EXPECT_EQ(m.vertices.size(), 9U); // also for the same numbers: such corners have no chain
    for (const Model::Vertex& vertex : m.vertices) {
        EXPECT_THAT(vertex.v, testing::Each(0));
        EXPECT_THAT(vertex.t, testing::Each(0));
        EXPECT_TRUE(std::isnan(vertex.n[0]));
    }
}

TEST_F(ObjReaderTest, MissingComponentsAreZero)
{
    const Model m = model("v 1\nv 1 2\nv\nv x 1 2\nv 1 x 2\nvt 5\nvn 0 3\nf 1/1/1 2 3\nf 4 5 5\n");
    EXPECT_THAT(m.vertices[0].v, ElementsAre(1, 0, 0));
    EXPECT_THAT(m.vertices[0].t, ElementsAre(5, 0));
    EXPECT_THAT(m.vertices[0].n, ElementsAre(0, 1, 0));
    EXPECT_THAT(m.vertices[1].v, ElementsAre(1, 2, 0));
    EXPECT_THAT(m.vertices[2].v, ElementsAre(0, 0, 0));
    EXPECT_THAT(m.vertices[3].v, ElementsAre(0, 0, 0));
    EXPECT_THAT(m.vertices[4].v, ElementsAre(1, 0, 0));
}

// ---- Shared corners -----------------------------------------------------------------------------

TEST_F(ObjReaderTest, OneCornerInOneGroupIsOneVertex)
{
    const std::string tables = std::string(SQUARE) + "vt 0 0\nvn 0 0 1\n";
    EXPECT_EQ(model(tables + "s 1\nf 1/1/1 2 3\nf 1/1/1 3 4\n").vertices.size(), 4U);
    EXPECT_EQ(model(tables + "f 1/1/1 2 3\nf 1/1/1 3 4\n").vertices.size(), 4U);
}

TEST_F(ObjReaderTest, OneCornerInTwoGroupsIsTwoVertices)
{
    const Model m = model(std::string(SQUARE) + "vt 0 0\nvn 0 0 1\n"
                                                "s 1\nf 1/1/1 2/1/1 3/1/1\n"
                                                "s 2\nf 1/1/1 2/1/1 3/1/1\n");
    EXPECT_EQ(m.vertices.size(), 6U);
}

TEST_F(ObjReaderTest, ACornerAfterAnotherOfItsPositionIsANewVertexAgain)
{
    // 1/1 and 1/2 share a position. The second throws the first out of the chain, so that the third
    // face, with 1/1 again, gets a vertex that is there already.
    const Model m =
        model(std::string(SQUARE) + "vt 0 0\nvt 1 1\nf 1/1 2 3\nf 1/2 2 3\nf 1/1 2 3\n");
    EXPECT_THAT(m.surfaces[0].triangles,
                ElementsAre(Triangle{0, 1, 2}, Triangle{3, 1, 2}, Triangle{4, 1, 2}));
    EXPECT_THAT(m.vertices[4].t, ElementsAre(0, 0));
}

TEST_F(ObjReaderTest, ACornerOfALineSharesAVertexOfAnyNormalAndGroup)
{
    const Model m = model(std::string(SQUARE) + "vt 0 0\nvn 0 0 1\ns 3\n"
                                                "f 1/1/1 2/1/1 3/1/1\nl 1/1 2/1 3\n");
    EXPECT_EQ(m.vertices.size(), 4U); // 3 has another texture coordinate than 3/1/1
    EXPECT_THAT(m.surfaces[0].lines, ElementsAre(Line{0, 1}, Line{1, 3}));
}

TEST_F(ObjReaderTest, ACornerOfALineHasNoNormalAndNoGroup)
{
    // It serves for a face's corner without normal in group 0, and for no other. The group of the
    // corner before it, which a face has made, is not its own.
    const Model m = model(std::string(SQUARE) + "vn 0 0 1\ns 3\nf 1 1 1\nl 1 2 3 4\n"
                                                "f 2 1 1\ns 0\nf 3//1 4 4\n");
    EXPECT_THAT(m.surfaces[0].lines, ElementsAre(Line{0, 1}, Line{1, 2}, Line{2, 3}));
    EXPECT_THAT(m.surfaces[0].triangles,
                ElementsAre(Triangle{0, 0, 0}, Triangle{4, 0, 0}, Triangle{5, 3, 3}));
    EXPECT_EQ(m.vertices.size(), 6U);
}

TEST_F(ObjReaderTest, ACornerOfALineKeepsTheGroupOfTheVertexThatItShares)
{
    // The corners of the line are those of group 1: the second face, of no group, shares none.
    const Model other = model("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n"
                              "s 1\nf 1 2 3\nl 1 2\ns off\nf 1 2 4\n");
    EXPECT_THAT(other.surfaces[0].lines, ElementsAre(Line{0, 1}));
    EXPECT_THAT(other.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}, Triangle{3, 4, 5}));
    EXPECT_EQ(other.vertices.size(), 6U);

    // They have no normal: the second face, without normals in the same group, shares corner 1.
    const Model same = model("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nvn 0 0 1\n"
                             "s 5\nf 1//1 2//1 3//1\nl 1 2\nf 1 3 4\n");
    EXPECT_THAT(same.surfaces[0].lines, ElementsAre(Line{0, 1}));
    EXPECT_THAT(same.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}, Triangle{0, 3, 4}));
    EXPECT_EQ(same.vertices.size(), 5U);
}

TEST_F(ObjReaderTest, TheTablesStartAnewWithEachFile)
{
    model(std::string(SQUARE) + "vt 1 1\nvn 1 1 1\nf 1/1/1 2 3\n");
    const Model m = model("v 5 5 5\nf -1/1/1 2 -1\n");
    EXPECT_THAT(m.surfaces[0].triangles, ElementsAre(Triangle{0, 1, 2}));
    EXPECT_THAT(m.vertices[0].t, ElementsAre(0, 0)); // no coordinate 1
    EXPECT_THAT(m.vertices[1].v, ElementsAre(0, 0, 0));
}

// ---- Lines --------------------------------------------------------------------------------------

TEST_F(ObjReaderTest, APolylineIsALineForEachPairOfNeighbors)
{
    const Model m = model(std::string(SQUARE) + "vt 0.5 1\nl 1 2/1 3 1\nl 4\nl\n");
    EXPECT_THAT(m.surfaces[0].lines, ElementsAre(Line{0, 1}, Line{1, 2}, Line{2, 0}));
    EXPECT_THAT(m.vertices[1].t, ElementsAre(0.5f, 1));
}

TEST_F(ObjReaderTest, LinesReadTwoNumbersOfACorner)
{
    const Model m = model(std::string(SQUARE) + "vt 0.5 1\nvn 0 0 1\nl 1/1/1 2//1\n");
    EXPECT_THAT(m.vertices[0].t, ElementsAre(0.5f, 1));
    EXPECT_TRUE(std::isnan(m.vertices[0].n[0]));
    EXPECT_THAT(m.vertices[1].t, ElementsAre(0, 0));
    EXPECT_TRUE(std::isnan(m.vertices[1].n[0]));
}

// ---- Smoothing groups ---------------------------------------------------------------------------

TEST_F(ObjReaderTest, AGroupAddsFaceNormals)
{
    // Two faces at a right angle share the positions 1 and 2: their normals are (0, 0, 1) and
    // (0, -1, 0).
    const Model m = model("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 1 0 1\ns 1\nf 1 2 3\nf 1 2 4\n");
    ASSERT_EQ(m.vertices.size(), 4U);
    const float half = 0.70710677f;
    EXPECT_NEAR(m.vertices[0].n[1], -half, 1e-6);
    EXPECT_NEAR(m.vertices[0].n[2], half, 1e-6);
    EXPECT_THAT(m.vertices[2].n, ElementsAre(0, 0, 1));
    EXPECT_THAT(m.vertices[3].n, ElementsAre(0, -1, 0));
}

TEST_F(ObjReaderTest, WithoutAGroupThereAreNoFaceNormals)
{
    for (const char* off : {"", "s off\n", "s 0\n", "s\n", "s 1\ns x\n", "s -0\n"}) {
        const Model m = model(SQUARE + std::string(off) + "f 1 2 3\n");
        EXPECT_TRUE(std::isnan(m.vertices[0].n[0])) << off;
    }
    for (const char* on : {"s 1\n", "s 7 \n", "s -1\n", "s 99999999999\n", "s +2x\n"}) {
        const Model m = model(SQUARE + std::string(on) + "f 1 2 3\n");
        EXPECT_THAT(m.vertices[0].n, ElementsAre(0, 0, 1)) << on;
    }
}

TEST_F(ObjReaderTest, TheFaceNormalGoesToTheVerticesWithTheNumbersOfThePositions)
{
    // Positions 3, 2, 1 become the vertices 0, 1, 2. The face of positions 4, 3, 2 adds its normal,
    // (0, 0, -1) like that of the first, to the vertices 3, 2, 1: to that of position 1 instead of
    // position 3.
    const Model m = model("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\ns 1\nf 3 2 1\nf 4 3 2\nf 4 1 2\n");
    ASSERT_EQ(m.vertices.size(), 4U);
    // Sum of the unit normals before normalizing: vertex 0 got two, 1 got three, 2 got two, 3 got
    // two, of which the last, of 4 1 2, is (0, 0, 1).
    const auto z = [&m](std::size_t vi) { return m.vertices[vi].n[2]; };
    EXPECT_TRUE(std::isnan(z(0))); // -1 + 1 = 0, of length 0
    EXPECT_EQ(z(1), -1);
    EXPECT_EQ(z(2), -1);
    EXPECT_TRUE(std::isnan(z(3)));
}

TEST_F(ObjReaderTest, AFaceNormalForAVertexThatIsNotThereYetIsDropped)
{
    // Positions 4, 5, 6 become the vertices 0, 1, 2; the normal would belong to 3, 4, 5.
    const Model m = model("v 9 9 9\nv 9 9 9\nv 9 9 9\nv 0 0 0\nv 1 0 0\nv 0 1 0\ns 1\nf 4 5 6\n"
                          "f 1 2 3\n");
    for (const Model::Vertex& vertex : m.vertices) {
        EXPECT_TRUE(std::isnan(vertex.n[2]));
    }
}

TEST_F(ObjReaderTest, OnlyTheFirstCornerTellsWhetherAFaceHasNormals)
{
    const std::string tables = std::string(SQUARE) + "vn 1 0 0\ns 1\n";
    const Model with = model(tables + "f 1//1 2 3\n");
    EXPECT_THAT(with.vertices[0].n, ElementsAre(1, 0, 0));
    EXPECT_TRUE(std::isnan(with.vertices[1].n[0]));
    const Model without = model(tables + "f 1 2//1 3\n");
    EXPECT_THAT(without.vertices[0].n, ElementsAre(0, 0, 1));
    EXPECT_NEAR(without.vertices[1].n[0], 0.70710677f, 1e-6); // (1, 0, 0) + (0, 0, 1)
    EXPECT_NEAR(without.vertices[1].n[2], 0.70710677f, 1e-6);
    const Model elsewhere = model(tables + "f 1//7 2 3\n"); // a number, though not there
    EXPECT_TRUE(std::isnan(elsewhere.vertices[1].n[0]));
}

TEST_F(ObjReaderTest, AFaceWithAPositionThatIsNotThereGivesNoNormal)
{
    const Model m = model(std::string(SQUARE) + "s 1\nf 1 2 9\nf 0 1 2\n");
    EXPECT_EQ(m.surfaces[0].triangles.size(), 2U);
    for (const Model::Vertex& vertex : m.vertices) {
        EXPECT_TRUE(std::isnan(vertex.n[0]));
    }
    const Model later = model(std::string(SQUARE) + "s 1\nf 1 2 3 9\n"); // only the fourth
    EXPECT_THAT(later.vertices[0].n, ElementsAre(0, 0, 1));
}

// ---- Lines of text ------------------------------------------------------------------------------

TEST_F(ObjReaderTest, UnknownWordsAreIgnored)
{
    const Model m = model("# v 1 1 1\ng a\no b\n\n   \nV 1 1 1\nvx 1 1 1\n  v 2 2 2\nF 1 1 1\n"
                          "\tf 1 1 1\nusemtlx a\nfv 1 1 1\n");
    EXPECT_EQ(m.vertices.size(), 1U);
    EXPECT_EQ(m.vertices[0].v[0], 2);
    EXPECT_EQ(m.surfaces[0].triangles.size(), 1U);
}

TEST_F(ObjReaderTest, CarriageReturnsAndAMissingLastNewlineDoNotMatter)
{
    const std::string lines = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nusemtl red\ns 1\nf 1 2 3";
    write("m.mtl", "newmtl red\r\nKd 1 0 0\r\nmap_Kd tex.png\r\n");
    std::string windows;
    for (const char c : lines) {
        windows += c == '\n' ? "\r\n" : std::string(1, c);
    }
    const std::string expected = describe(model(lines + "\n"));
    EXPECT_EQ(describe(model(lines)), expected);
    EXPECT_EQ(describe(model(windows)), expected);
    EXPECT_EQ(describe(model(windows + "\r\n")), expected);
    EXPECT_THAT(expected, testing::HasSubstr("material red"));
    EXPECT_THAT(expected, testing::HasSubstr("map tex.png "));
}

TEST_F(ObjReaderTest, TheRestOfALongLineIsALineOfItsOwn)
{
    // The first 1023 characters are a comment, and what follows is a position.
    std::string line = "#" + std::string(1022, 'x') + "v 3 3 3\nf 1 1 1\n";
    EXPECT_EQ(model(line).vertices.at(0).v[0], 3);
    // A face of 10,000 characters: 511 corners fill the first 1023; the other parts begin with a
    // number, which means nothing.
    line = "v 1 1 1\nf";
    while (line.size() < 10008) {
        line += " 1";
    }
    EXPECT_EQ(model(line).surfaces.at(0).triangles.size(), 509U);
}

TEST_F(ObjReaderTest, ANulEndsALine)
{
    const Model m = model(std::string_view("v 1 2\0 3\nf 1 1 1\0 1\n", 21));
    EXPECT_THAT(m.vertices[0].v, ElementsAre(1, 2, 0));
    EXPECT_EQ(m.surfaces[0].triangles.size(), 1U);
}

// ---- Bad files ----------------------------------------------------------------------------------

TEST_F(ObjReaderTest, AFileThatCannotBeReadGivesAnEmptyModel)
{
    const std::string pipe = path("pipe.obj");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    int expected = 0;
    for (const std::string& name :
         {path("gone.obj"), path(""), pipe, write("empty.obj", ""), std::string()}) {
        const int fi = obj_add_file(name.c_str());
        EXPECT_EQ(fi, expected++);
        EXPECT_EQ(obj_num_mtrl(fi), 0) << name;
        EXPECT_EQ(obj_num_surf(fi), 0) << name;
        EXPECT_EQ(obj_num_vert(fi), 0) << name;
    }
    EXPECT_EQ(obj_add_file(nullptr), expected);
}

TEST_F(ObjReaderTest, NumbersThatAreNoneStayInTheGeometry)
{
    const Model m = model("v nan inf -inf\nv 1e999 -1e999 1e-999\nv 0 0 0\ns 1\nf 1 2 3\n");
    EXPECT_TRUE(std::isnan(m.vertices[0].v[0]));
    EXPECT_EQ(m.vertices[0].v[1], INFINITY);
    EXPECT_EQ(m.vertices[0].v[2], -INFINITY);
    EXPECT_EQ(m.vertices[1].v[0], INFINITY);
    EXPECT_EQ(m.vertices[1].v[2], 0);
    EXPECT_TRUE(std::isnan(m.vertices[2].n[0]));
}

// ---- Without a GL context -----------------------------------------------------------------------

TEST_F(ObjReaderTest, WithoutAContextDrawingDoesNothing)
{
    const int fi = obj_add_file(write("m.obj", std::string(SQUARE) + "f 1 2 3\nl 1 2\n").c_str());
    obj_init_gl();
    EXPECT_FALSE(GL_is_initialized); // a later context is asked again
    EXPECT_FALSE(GL_has_vertex_buffer_object);
    EXPECT_FALSE(GL_has_multitexture);
    EXPECT_EQ(GL_max_texture_image_units, 0);
    obj_draw_file(fi);
    obj_draw_axes(fi, 1);
    obj_draw_surf(fi, 0);
    obj_draw_mtrl(fi, 0);
    obj_draw_prop(fi, 0, 0);
    EXPECT_EQ(obj::file(fi)->vbo, 0U);
}

} // namespace
