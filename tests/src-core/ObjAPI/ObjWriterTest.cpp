#include "ObjAPI.h"

#include "ObjModel.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <limits>

namespace {

class ObjWriterTest : public ObjTest {
protected:
    static void add_vertex(int fi, const float (&v)[3], const float (&t)[2], const float (&n)[3])
    {
        const int vi = obj_add_vert(fi);
        obj_set_vert_v(fi, vi, v);
        obj_set_vert_t(fi, vi, t);
        obj_set_vert_n(fi, vi, n);
    }

    /// A model of one material.
    static int material()
    {
        const int fi = obj_add_file(nullptr);
        obj_add_mtrl(fi);
        return fi;
    }

    std::string written_obj(int fi)
    {
        obj_write_file(fi, path("w.obj").c_str(), nullptr);
        return read("w.obj");
    }

    std::string written_mtl(int fi)
    {
        obj_write_file(fi, nullptr, path("w.mtl").c_str());
        return read("w.mtl");
    }
};

TEST_F(ObjWriterTest, AModelIsWrittenToTheByte)
{
    const int fi = material();
    obj_set_mtrl_name(fi, 0, "coral");
    add_vertex(fi, {0, -1.5f, 1234.5678f}, {0.25f, 1}, {0, 0, 1});
    add_vertex(fi, {1, 0, 1e-9f}, {0, 0}, {-1, 0, 0});
    add_vertex(fi, {12345678, 0.1f, -0.0f}, {0.5f, 2}, {0, 1, 0});
    obj_add_surf(fi);
    const int triangles[2][3] = {{0, 1, 2}, {2, 1, 0}};
    for (const auto& vi : triangles) {
        obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
    }
    obj_add_surf(fi);
    obj_set_surf(fi, 1, 5);
    const int line[2] = {0, 1};
    obj_set_line(fi, 1, obj_add_line(fi, 1), line);
    const std::string library = path("w.mtl");
    obj_write_file(fi, path("w.obj").c_str(), library.c_str());
    EXPECT_EQ(read("w.obj"), "mtllib " + library +
                                 "\n"
                                 "v    0.00000000  -1.50000000 1234.56774902\n"
                                 "v    1.00000000   0.00000000   0.00000000\n"
                                 "v  12345678.00000000   0.10000000  -0.00000000\n"
                                 "vt   0.25000000   1.00000000\n"
                                 "vt   0.00000000   0.00000000\n"
                                 "vt   0.50000000   2.00000000\n"
                                 "vn   0.00000000   0.00000000   1.00000000\n"
                                 "vn  -1.00000000   0.00000000   0.00000000\n"
                                 "vn   0.00000000   1.00000000   0.00000000\n"
                                 "usemtl coral\n"
                                 "f 1/1/1 2/2/2 3/3/3\n"
                                 "f 3/3/3 2/2/2 1/1/1\n"
                                 "usemtl default\n"
                                 "l 1/1/1 2/2/2\n");
}

TEST_F(ObjWriterTest, WithoutALibraryThereIsNoMtllib)
{
    EXPECT_EQ(written_obj(material()), "");
    EXPECT_FALSE(std::filesystem::exists(path("w.mtl")));
}

TEST_F(ObjWriterTest, SurfacesWithoutAMaterialOrANameUseDefault)
{
    const int fi = material();
    for (const int mi : {0, 1, -1}) {
        obj_set_surf(fi, obj_add_surf(fi), mi);
    }
    EXPECT_EQ(written_obj(fi), "usemtl default\nusemtl default\nusemtl default\n");
    EXPECT_THAT(written_mtl(fi), testing::StartsWith("newmtl default\nKd "));
}

TEST_F(ObjWriterTest, AMaterialIsWrittenToTheByte)
{
    const int fi = material();
    obj_set_mtrl_name(fi, 0, "coral reef");
    const float red[4] = {1, 0.5f, 0.25f, 0.125f};
    obj_set_mtrl_c(fi, 0, 0, red);
    obj_add_mtrl(fi);
    const float shininess[4] = {100, 7, 7, 7};
    obj_set_mtrl_c(fi, 1, 4, shininess);
    EXPECT_EQ(written_mtl(fi), "newmtl coral reef\n"
                               "Kd   1.00000000   0.50000000   0.25000000\n"
                               "Ka   0.20000000   0.20000000   0.20000000\n"
                               "Ke   0.00000000   0.00000000   0.00000000\n"
                               "Ks   0.00000000   0.00000000   0.00000000\n"
                               "Ns   8.00000000\n"
                               "d    0.12500000\n"
                               "newmtl default\n"
                               "Kd   0.80000001   0.80000001   0.80000001\n"
                               "Ka   0.20000000   0.20000000   0.20000000\n"
                               "Ke   0.00000000   0.00000000   0.00000000\n"
                               "Ks   0.00000000   0.00000000   0.00000000\n"
                               "Ns 100.00000000\n"
                               "d    1.00000000\n");
}

TEST_F(ObjWriterTest, TheAmbientMapIsWrittenTwiceAndTheEmissiveOneNever)
{
    const int fi = material();
    const char* const names[] = {"d.png", "a.png", "e.png", "s.png", "n.png"};
    for (int ki = 0; ki < 5; ++ki) {
        obj_set_mtrl_map(fi, 0, ki, names[ki]);
    }
    EXPECT_THAT(written_mtl(fi), testing::EndsWith("d    1.00000000\n"
                                                   "map_Kd d.png\n"
                                                   "map_Ka a.png\n"
                                                   "map_Ke a.png\n"
                                                   "map_Ks s.png\n"
                                                   "map_Ns n.png\n"));
}

TEST_F(ObjWriterTest, MapOptionsAreWrittenWhenTheyDifferFromTheDefaults)
{
    const int fi = material();
    obj_set_mtrl_map(fi, 0, 0, "d.png");
    EXPECT_THAT(written_mtl(fi), testing::EndsWith("map_Kd d.png\n"));
    const float o[3] = {0, -0.5f, 0};
    const float s[3] = {1, 1, 2};
    obj_set_mtrl_o(fi, 0, 0, o);
    EXPECT_THAT(written_mtl(fi),
                testing::EndsWith("map_Kd -o 0.000000 -0.500000 0.000000 d.png\n"));
    obj_set_mtrl_s(fi, 0, 0, s);
    obj_set_mtrl_opt(fi, 0, 0, 3);
    EXPECT_THAT(written_mtl(fi),
                testing::EndsWith("map_Kd -clamp on -o 0.000000 -0.500000 0.000000 "
                                  "-s 1.000000 1.000000 2.000000 d.png\n"));
    obj_set_mtrl_opt(fi, 0, 0, 2);
    const float zero[3] = {-0.0f, 0, 0};
    const float one[3] = {1, 1, 1};
    obj_set_mtrl_o(fi, 0, 0, zero);
    obj_set_mtrl_s(fi, 0, 0, one);
    EXPECT_THAT(written_mtl(fi), testing::EndsWith("map_Kd d.png\n"));
}

TEST_F(ObjWriterTest, PathsThatCannotBeOpenedAreNotWritten)
{
    const int fi = material();
    obj_write_file(fi, path("gone/w.obj").c_str(), path("gone/w.mtl").c_str());
    obj_write_file(fi, path("").c_str(), path("").c_str());
    EXPECT_FALSE(std::filesystem::exists(path("gone")));
    obj_write_file(fi, path("gone/w.obj").c_str(), path("w.mtl").c_str()); // one of them can
    EXPECT_NE(read("w.mtl"), "");
}

TEST_F(ObjWriterTest, ADirectoryOrAPipeIsNotWrittenAndKeepsNobodyWaiting)
{
    const int fi = material();
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    obj_write_file(fi, pipe.c_str(), pipe.c_str());
    obj_write_file(fi, path("").c_str(), path("").c_str());
    obj_write_file(fi, "/dev/full", "/dev/full"); // a full disk
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(ObjWriterTest, IndicesOfAnySizeAndNumbersThatAreNoneAreWritten)
{
    const int fi = obj_add_file(nullptr);
    obj_add_surf(fi);
    const int vi[3] = {INT_MAX, INT_MIN, -1};
    obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
    const float inf = std::numeric_limits<float>::infinity();
    add_vertex(fi, {inf, -inf, 0}, {0, 0}, {0, 0, 0});
    EXPECT_THAT(written_obj(fi),
                testing::StartsWith("v           inf         -inf   0.00000000\n"));
    EXPECT_THAT(written_obj(fi), testing::EndsWith("f 2147483648/2147483648/2147483648 "
                                                   "-2147483647/-2147483647/-2147483647 0/0/0\n"));
}

/// The model with a material and vertices of its own for each surface and corner: the same for two
/// models that differ in numbering only. Without tangents, which are not written.
Model spread(const Model& model)
{
    Model result;
    for (Model::Surface surface : model.surfaces) {
        result.materials.push_back(model.materials.at(static_cast<std::size_t>(surface.mi)));
        surface.mi = static_cast<int>(result.materials.size()) - 1;
        const auto spread_vertex = [&](int& vi) {
            result.vertices.push_back(model.vertices.at(static_cast<std::size_t>(vi)));
            result.vertices.back().u = {};
            vi = static_cast<int>(result.vertices.size()) - 1;
        };
        for (auto& triangle : surface.triangles) {
            std::for_each(triangle.begin(), triangle.end(), spread_vertex);
        }
        for (auto& line : surface.lines) {
            std::for_each(line.begin(), line.end(), spread_vertex);
        }
        result.surfaces.push_back(surface);
    }
    return result;
}

TEST_F(ObjWriterTest, WhatIsWrittenIsReadAgain)
{
    write("in.mtl", "newmtl stone\nKd 0.5 0.25 0.125\nKa 1 0.5 0\nKe 0.25 0 0\nKs 1 1 0.5\nNs 32\n"
                    "d 0.5\nmap_Kd -clamp on -o 0.5 0.25 0 -s 2 2 1 stone.png\nmap_Ka a.png\n"
                    "map_Ks s.jpg\nmap_Ns -s 4 1 1 n.png\n"
                    "newmtl sand\nKd 1 1 0.75\n");
    write("in.obj", "mtllib in.mtl\n"
                    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0.5 0.5 2\n"
                    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\nvn 0 1 0\n"
                    "usemtl stone\nf 1/1/1 2/2/1 3/3/1 4/4/1\nl 1/1 2/2\n"
                    "usemtl sand\nf 5/1/2 1/2/2 2/3/2\nusemtl stone\nf 3/3/2 2/1/2 5/4/2\n");
    // A library is found beside its model, so it is named without a directory.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(path(""));
    obj_write_file(obj_add_file("in.obj"), "out.obj", "out.mtl");
    obj_write_file(obj_add_file("out.obj"), "again.obj", "again.mtl");
    obj_add_file("again.obj");
    std::filesystem::current_path(before);

    Model expected = spread(model_of(0));
    ASSERT_EQ(expected.surfaces.size(), 3U);
    for (Model::Material& material : expected.materials) {
        // The writer names the ambient map as the emissive one too.
        material.kv[2].map_name = material.kv[1].map_name;
    }
    EXPECT_EQ(describe(spread(model_of(1))), describe(expected));
    EXPECT_EQ(describe(model_of(2)), describe(model_of(1)));
}

} // namespace
