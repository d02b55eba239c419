// OBJ and MTL files that break off, name the wrong things, or do not end.

#include "ObjAPI.h"

#include "ObjModel.h"

#include <sys/stat.h>

namespace {

const char MODEL[] = "mtllib m.mtl\n"
                     "v 1 2 3\nv 4 5 6\nv -7e1 .5 0x8\nvt 0 1\nvn 0 0 1\n"
                     "usemtl a\ns 1\nf 1/1/1 2/1/1 3/1/1\nf -1 -2 -3\n"
                     "usemtl b\ns off\nf 1//1 2//1 3//1 1/1\nl 1/1 2/1 3\n";
const char LIBRARY[] = "newmtl a\nKd 1 0 0\nd 0.5\nmap_Kd -clamp on -s 2 2 1 -o 0.5 a.png\n"
                       "newmtl b\nKs 1 1 1\nNs 20\nmap_Ns -s 3 b.jpg\n";

class ObjHazardTest : public ObjTest {
protected:
    /// Reads a model, expects that its indices are in their tables, and deletes it.
    /// \return what was in it
    static Model readAndDelete(const std::string& path)
    {
        const int fi = obj_add_file(path.c_str());
        EXPECT_GE(fi, 0);
        const Model m = model_of(fi);
        const int vc = static_cast<int>(m.vertices.size());
        for (const Model::Surface& surface : m.surfaces) {
            EXPECT_LT(surface.mi, static_cast<int>(m.materials.size()));
            for (const auto& triangle : surface.triangles) {
                for (const int vi : triangle) {
                    EXPECT_TRUE(0 <= vi && vi < vc);
                }
            }
            for (const auto& line : surface.lines) {
                for (const int vi : line) {
                    EXPECT_TRUE(0 <= vi && vi < vc);
                }
            }
        }
        obj_del_file(fi);
        return m;
    }
};

TEST_F(ObjHazardTest, AModelMayBreakOffAtEveryByte)
{
    write("m.mtl", LIBRARY);
    const std::string whole = MODEL;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const Model m = readAndDelete(write("m.obj", whole.substr(0, size)));
        EXPECT_LE(m.surfaces.size(), 2u);
    }
    EXPECT_EQ(obj_num_file(), 0);
}

TEST_F(ObjHazardTest, ALibraryMayBreakOffAtEveryByte)
{
    const std::string model = write("m.obj", MODEL);
    const std::string whole = LIBRARY;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        write("m.mtl", whole.substr(0, size));
        EXPECT_EQ(readAndDelete(model).materials.size(), 2u);
    }
}

TEST_F(ObjHazardTest, FilesThatNameThemselvesAndEachOtherAreReadOnce)
{
    // A model that is its own library and its own picture.
    std::string text = std::string("newmtl a\nmap_Kd m.obj\n") + MODEL;
    text.replace(text.find("m.mtl"), 5, "m.obj");
    EXPECT_EQ(readAndDelete(write("m.obj", text)).surfaces.size(), 2u);

    // A library that uses materials and names a library, itself.
    write("m.mtl", "mtllib m.mtl\nusemtl a\nnewmtl a\nmtllib m.mtl\nusemtl b\nmap_Kd m.mtl\n");
    EXPECT_EQ(readAndDelete(write("m.obj", MODEL)).materials.size(), 2u);
}

TEST_F(ObjHazardTest, PipesAndDirectoriesAreLeftOutAndKeepNobodyWaiting)
{
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
    std::filesystem::create_directory(path("folder"));
    for (const char* name : {"pipe", "folder"}) {
        EXPECT_TRUE(readAndDelete(path(name)).vertices.empty());
        std::string text = MODEL;
        text.replace(text.find("m.mtl"), 5, name);
        EXPECT_EQ(readAndDelete(write("m.obj", text)).vertices.size(), 11u);
    }
    write("m.mtl", "newmtl a\nmap_Kd pipe.png\nnewmtl b\nmap_Kd folder\n");
    EXPECT_EQ(readAndDelete(write("m.obj", MODEL)).materials.size(), 2u);
}

TEST_F(ObjHazardTest, ALineWithoutEndIsReadPieceByPiece)
{
    EXPECT_TRUE(readAndDelete(write("m.obj", std::string(3 << 20, 'v'))).vertices.empty());
    EXPECT_TRUE(readAndDelete(write("m.obj", std::string(3 << 20, '\0'))).vertices.empty());
    std::string corners = "v 1 2 3\nf";
    for (int i = 0; i < 300000; ++i) {
        corners += " 1";
    }
    EXPECT_EQ(readAndDelete(write("m.obj", corners)).surfaces.size(), 1u);
    write("m.mtl", "newmtl " + std::string(3 << 20, 'a') + "\nmap_Kd " + std::string(3 << 20, ' '));
    EXPECT_EQ(readAndDelete(write("m.obj", MODEL)).materials.size(), 2u);
}

TEST_F(ObjHazardTest, NumbersOfAnySizeAreNoIndices)
{
    for (const char* number :
         {"0", "4", "-4", "2147483647", "2147483648", "-2147483648", "-2147483649",
          "99999999999999999999999999", "-99999999999999999999999999", "1e9"}) {
        const std::string n = number;
        const std::string text =
            "f " + n + " " + n + " " + n + "\nv 1 2 3\nv 4 5 6\nv 7 8 9\ns 1\nf " + n + "/" + n +
            "/" + n + " 1 2\nf 1 2 " + n + "\nl " + n + " 1/" + n + "\ns " + n + "\nf 1 2 3\n";
        EXPECT_FALSE(readAndDelete(write("m.obj", text)).surfaces.empty()) << n;
    }
}

} // namespace
