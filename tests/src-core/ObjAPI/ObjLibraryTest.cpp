#include "ObjAPI.h"

#include "ObjReading.h"
#include "PeakOfMemory.h"

#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

using testing::ElementsAre;

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

// ---- Bad files
// ------------------------------------------------------------------------------------

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
    for (std::size_t i = 0; i < 10000; ++i) {
        const std::string number = std::to_string(2 * i % 4000);
        ASSERT_EQ(m.materials[i].name, "m" + number);
        ASSERT_EQ(m.materials[i].kv[0].c[3], std::stof("0." + number)) << number;
    }
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

} // namespace
