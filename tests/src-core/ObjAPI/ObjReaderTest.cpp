#include "ObjAPI.h"

#include "ObjModel.h"
#include "PeakOfMemory.h"

#include <cmath>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using Triangle = std::array<int, 3>;
using Line = std::array<int, 2>;

/// These tests run without a GL context: models are read, textures are 0.
class ObjReaderTest : public ObjTest {
protected:
    /// Reads a model that is the text.
    Model model(std::string_view text)
    {
        return model_of(obj_add_file(write("m.obj", text).c_str()));
    }

    /// Reads a model of one material whose library has these lines.
    Model::Material material(const std::string& properties)
    {
        write("m.mtl", "newmtl m\n" + properties);
        const Model m = model("mtllib m.mtl\nusemtl m\nv 0 0 0\nf 1 1 1\n");
        return m.materials.at(0);
    }
};

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

// ---- Materials ----------------------------------------------------------------------------------

TEST_F(ObjReaderTest, EveryUsemtlMakesAMaterialAndASurface)
{
    write("m.mtl", "newmtl a\nKd 1 0 0\n");
    const Model m = model("mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\nusemtl a\nf 1 1 1\nf 1 1 1\n");
    ASSERT_EQ(m.materials.size(), 2U);
    EXPECT_EQ(m.materials[0].name, "a");
    EXPECT_EQ(m.materials[1].name, "a");
    ASSERT_EQ(m.surfaces.size(), 2U);
    EXPECT_EQ(m.surfaces[0].mi, 0);
    EXPECT_EQ(m.surfaces[1].mi, 1);
    EXPECT_EQ(m.surfaces[1].triangles.size(), 2U);
}

TEST_F(ObjReaderTest, AllPropertiesAreRead)
{
    const Model::Material m = material("Kd 0.1 0.2 0.3\nKa 0.4 0.5 0.6\nKe 0.7 0.8 0.9\n"
                                       "Ks 1 2 3\nNs 40\nd 0.5\nillum 2\nTr 0.9\n");
    EXPECT_EQ(m.name, "m");
    EXPECT_THAT(m.kv[0].c, ElementsAre(0.1f, 0.2f, 0.3f, 0.5f));
    EXPECT_THAT(m.kv[1].c, ElementsAre(0.4f, 0.5f, 0.6f, 1));
    EXPECT_THAT(m.kv[2].c, ElementsAre(0.7f, 0.8f, 0.9f, 1));
    EXPECT_THAT(m.kv[3].c, ElementsAre(1, 2, 3, 1));
    EXPECT_THAT(m.kv[4].c, ElementsAre(40, 0, 0, 0));
}

TEST_F(ObjReaderTest, NumbersThatAreNotThereKeepTheirDefaults)
{
    const Model::Material m = material("Kd 0.5\nKa x 1 1\nKs\nd\nNs 3 4\n");
    EXPECT_THAT(m.kv[0].c, ElementsAre(0.5f, 0.8f, 0.8f, 1));
    EXPECT_THAT(m.kv[1].c, ElementsAre(0.2f, 0.2f, 0.2f, 1));
    EXPECT_THAT(m.kv[3].c, ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(m.kv[4].c, ElementsAre(3, 4, 0, 0));
}

TEST_F(ObjReaderTest, TheFirstOfSeveralMaterialsOfANameCounts)
{
    write("m.mtl",
          "Kd 9 9 9\nnewmtl b\nKd 1 1 1\nnewmtl a extra\nKd 2 2 2\nKd 3\nnewmtl c\nKd 4 4 4\n"
          "newmtl a\nKd 5 5 5\n");
    const Model m = model("mtllib m.mtl\nv 0 0 0\nusemtl a b c\nf 1 1 1\nusemtl c\nf 1 1 1\n");
    EXPECT_THAT(m.materials[0].kv[0].c, ElementsAre(3, 2, 2, 1));
    EXPECT_THAT(m.materials[1].kv[0].c, ElementsAre(4, 4, 4, 1));
}

TEST_F(ObjReaderTest, AMaterialThatIsNotThereKeepsDefaultsAndHasNoName)
{
    write("m.mtl", "newmtl a\nKd 1 0 0\nnewmtl\nKd 0 1 0\n");
    for (const char* line : {"usemtl b\n", "usemtl\n", "usemtl A\n"}) {
        const Model m = model(std::string("mtllib m.mtl\nv 0 0 0\n") + line + "f 1 1 1\n");
        ASSERT_EQ(m.materials.size(), 1U);
        EXPECT_EQ(m.materials[0].name, "(none)") << line;
        EXPECT_EQ(m.materials[0].kv[0].c[0], 0.8f) << line;
    }
}

TEST_F(ObjReaderTest, TheLastLibraryCounts)
{
    write("one.mtl", "newmtl a\nKd 1 1 1\nnewmtl b\nKd 2 2 2\n");
    write("two.mtl", "newmtl a\nKd 3 3 3\n");
    const Model m = model("v 0 0 0\nusemtl a\nf 1 1 1\nmtllib one.mtl two.mtl\nusemtl a\nf 1 1 1\n"
                          "mtllib two.mtl\nusemtl a\nf 1 1 1\nusemtl b\nf 1 1 1\n"
                          "mtllib\nusemtl a\nf 1 1 1\nmtllib gone.mtl\nusemtl a\nf 1 1 1\n"
                          "mtllib one.mtl\nusemtl b\nf 1 1 1\n");
    std::vector<float> reds;
    for (const Model::Surface& surface : m.surfaces) {
        reds.push_back(m.materials[static_cast<std::size_t>(surface.mi)].kv[0].c[0]);
    }
    EXPECT_THAT(reds, ElementsAre(0.8f, 1, 3, 0.8f, 3, 0.8f, 2));
}

TEST_F(ObjReaderTest, OpaqueSurfacesComeFirst)
{
    write("m.mtl", "newmtl glass\nd 0.5\nnewmtl stone\n");
    const Model m = model("mtllib m.mtl\nv 0 0 0\nusemtl glass\nf 1 1 1\nusemtl stone\nf 1 1 1\n");
    EXPECT_EQ(m.materials[static_cast<std::size_t>(m.surfaces[0].mi)].name, "stone");
    EXPECT_EQ(m.materials[static_cast<std::size_t>(m.surfaces[1].mi)].name, "glass");
}

// ---- Maps ---------------------------------------------------------------------------------------

TEST_F(ObjReaderTest, MapOptionsAreRead)
{
    const Model::Material m =
        material("map_Kd -s 2 2 1 tex.png\nmap_Ka -clamp on -o 0.5 1 a.jpg\n"
                 "map_Ke -clamp off -o 3 -s 4 e.png\nmap_Ks s.png -o 1 2 3\nmap_Ns n.png\n");
    EXPECT_EQ(m.kv[0].map_name, "tex.png");
    EXPECT_THAT(m.kv[0].s, ElementsAre(2, 2, 1));
    EXPECT_EQ(m.kv[0].opt, 0);
    EXPECT_EQ(m.kv[1].map_name, "a.jpg");
    EXPECT_EQ(m.kv[1].opt, 1);
    EXPECT_THAT(m.kv[1].o, ElementsAre(0.5f, 1, 0));
    EXPECT_THAT(m.kv[1].s, ElementsAre(1, 1, 1));
    EXPECT_EQ(m.kv[2].opt, 0);
    EXPECT_THAT(m.kv[2].o, ElementsAre(3, 0, 0));
    EXPECT_THAT(m.kv[2].s, ElementsAre(4, 1, 1));
    EXPECT_EQ(m.kv[3].map_name, "s.png");
    EXPECT_THAT(m.kv[3].o, ElementsAre(1, 2, 3));
    EXPECT_EQ(m.kv[4].map_name, "n.png");
}

TEST_F(ObjReaderTest, TheLastWordThatIsNoOptionIsThePicture)
{
    EXPECT_EQ(material("map_Kd a.png b.png").kv[0].map_name, "b.png");
    EXPECT_EQ(material("map_Kd -bm 0.5 a.png -clamp").kv[0].map_name, "-clamp");
    EXPECT_EQ(material("map_Kd a.png\nmap_Kd b.png").kv[0].map_name, "b.png");
    EXPECT_EQ(material("map_Kd a.png\nmap_Kd -clamp on").kv[0].map_name, "(none)");
    EXPECT_EQ(material("map_Kd").kv[0].map_name, "(none)");
    EXPECT_EQ(material("map_Kd a.png\rb.png").kv[0].map_name, "a.png");
}

TEST_F(ObjReaderTest, OptionsMayRunIntoTheirValues)
{
    const Model::Material m = material("map_Kd -s2 3 -clampon -o1.5.png");
    EXPECT_THAT(m.kv[0].s, ElementsAre(2, 3, 1));
    EXPECT_EQ(m.kv[0].opt, 1);
    EXPECT_THAT(m.kv[0].o, ElementsAre(1.5f, 0, 0)); // .png is no number
    EXPECT_EQ(m.kv[0].map_name, ".png");
    EXPECT_EQ(material("map_Kd -s -o").kv[0].map_name, "-o");
    EXPECT_EQ(material("map_Kd -s 1 1 3d.png").kv[0].map_name, "d.png");
}

TEST_F(ObjReaderTest, TrailingBlanksAfterAMapEndTheScan)
{
    EXPECT_EQ(material("map_Kd tex.png ").kv[0].map_name, "tex.png");
    EXPECT_EQ(material("map_Kd tex.png \t \r\n").kv[0].map_name, "tex.png");
    EXPECT_EQ(material("map_Kd \nKd 1 1 1").kv[0].c[0], 1);
}

// ---- Paths --------------------------------------------------------------------------------------

TEST_F(ObjReaderTest, LibrariesLieBesideTheModel)
{
    write("deep/er/m.mtl", "newmtl a\nKd 1 0 0\n");
    write("deep/er/m.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\n");
    const int fi = obj_add_file(path("deep/er/m.obj").c_str());
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "a");
}

TEST_F(ObjReaderTest, ABackslashSeparatesDirectoriesToo)
{
    write("deep/m.mtl", "newmtl a\nKd 1 0 0\n");
    write("deep\\m.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\n");
    const int fi = obj_add_file(path("deep\\m.obj").c_str());
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "a");
}

TEST_F(ObjReaderTest, AModelWithoutDirectoryLiesInTheWorkingDirectory)
{
    write("m.mtl", "newmtl a\nKd 1 0 0\n");
    write("m.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\n");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(path(""));
    const int fi = obj_add_file("m.obj");
    std::filesystem::current_path(before);
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "a");
}

TEST_F(ObjReaderTest, PathsThatAreTooLongAreNotOpened)
{
    // A library that is there under a path of 1023 characters is read, under one of 1024 it is not.
    write("m.mtl", "newmtl a\nKd 1 0 0\n");
    for (const auto& [length, name] : {std::pair{1023, "a"}, std::pair{1024, "(none)"}}) {
        std::string library = "m.mtl";
        while (path(library).size() + 2 <= static_cast<std::size_t>(length)) {
            library = "./" + library;
        }
        if (path(library).size() < static_cast<std::size_t>(length)) {
            library = "/" + library;
        }
        ASSERT_EQ(path("").size() + library.size(), static_cast<std::size_t>(length));
        // The line is too long for the model unless it takes two.
        ASSERT_LT(library.size(), 1010U);
        const Model m = model("mtllib " + library + "\nv 0 0 0\nusemtl a\nf 1 1 1\n");
        EXPECT_EQ(m.materials[0].name, name) << length;
    }
    std::string directory = path("");
    while (directory.size() < 3000) {
        directory += "./";
    }
    const int fi = obj_add_file((directory + "m.obj").c_str());
    ASSERT_EQ(obj_num_surf(fi), 1);
    EXPECT_EQ(obj_get_mtrl_name(fi, 0), nullptr);
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

TEST_F(ObjReaderTest, LibrariesAndPicturesThatCannotBeReadAreLeftOut)
{
    ASSERT_EQ(mkfifo(path("pipe.mtl").c_str(), 0600), 0);
    std::filesystem::create_directory(path("folder.mtl"));
    for (const char* library : {"pipe.mtl", "folder.mtl", "gone.mtl", ".", "/"}) {
        const Model m = model(std::string("mtllib ") + library + "\nv 0 0 0\nusemtl a\nf 1 1 1\n");
        EXPECT_EQ(m.materials[0].name, "(none)");
    }
    for (const char* picture : {"gone.jpg", "x", "png", ".png", "m.mtl"}) {
        const Model::Material m = material(std::string("map_Kd ") + picture);
        EXPECT_EQ(m.kv[0].map_name, picture);
        EXPECT_EQ(obj_get_mtrl_map(obj_num_file() - 1, 0, 0), 0U);
    }
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

TEST_F(ObjReaderTest, ManyMaterialsTakeTimeInProportion)
{
    // 20,000 uses of a library of 12,000 lines, then of a material of 12,000 lines: read for each
    // use, these would be 240 million lines each.
    std::string library;
    for (int i = 0; i < 4000; ++i) {
        const std::string number = std::to_string(i);
        library += "newmtl m" + number + "\nKd 1 0 0\nd 0." + number + "\n";
    }
    library += "newmtl large\n";
    for (int i = 0; i < 12000; ++i) {
        library += "Kd 1 0 0\n";
    }
    write("m.mtl", library);
    std::string text = "mtllib m.mtl\nv 0 0 0\n";
    for (int i = 0; i < 20000; ++i) {
        text += "usemtl m" + std::to_string(i % 4000) + (i % 2 == 0 ? "\nf 1 1 1\n" : "\n");
    }
    for (int i = 0; i < 20000; ++i) {
        text += "usemtl large\nf 1 1 1\n";
    }
    const Model m = model(text);
    EXPECT_EQ(m.surfaces.size(), 30000U);
    EXPECT_EQ(m.materials.size(), 30000U);
    EXPECT_EQ(m.materials[1].name, "m2");
    EXPECT_EQ(m.materials[29999].name, "large");
}

TEST_F(ObjReaderTest, ALibraryUnderManyNamesIsKeptOnce)
{
    // A library of 4,000 materials is more than half a megabyte; 2,000 of it would be gigabytes.
    std::string library;
    for (int i = 0; i < 4000; ++i) {
        library += "newmtl m" + std::to_string(i) + "\n";
    }
    write("m.mtl", library);
    std::filesystem::create_symlink("m.mtl", path("symbolic.mtl"));
    std::filesystem::create_hard_link(path("m.mtl"), path("hard.mtl"));
    std::string text = "v 0 0 0\n";
    for (int i = 0; i < 2000; ++i) {
        std::string name;
        for (int bit = 0; bit < 11; ++bit) {
            name += (i >> bit & 1) != 0 ? ".//" : "./";
        }
        name += i % 3 == 0 ? "m.mtl" : i % 3 == 1 ? "symbolic.mtl" : "hard.mtl";
        text += "mtllib " + name + "\nusemtl m" + std::to_string(i) + "\nf 1 1 1\n";
    }
    const long before = peakOfMemory();
    const Model m = model(text);
    EXPECT_LT(peakOfMemory() - before, 200 * 1024);
    ASSERT_EQ(m.materials.size(), 2000U);
    for (std::size_t i = 0; i < 2000; ++i) {
        EXPECT_EQ(m.materials[i].name, "m" + std::to_string(i));
    }
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
