#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> lines(const std::string& name)
{
    std::ifstream file(std::string(KELPIX_MEDIA_DIR "/data/") + name);
    std::vector<std::string> all;
    for (std::string line; std::getline(file, line);) {
        all.push_back(line);
    }
    return all;
}

struct Model {
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 2>> coordinates;
    std::vector<std::array<float, 3>> normals;
    std::vector<std::array<std::array<int, 3>, 4>> faces;
    std::string library;
    std::string material;
};

Model readModel()
{
    Model model;
    for (const std::string& line : lines("cube.obj")) {
        std::istringstream words(line);
        std::string word;
        words >> word;
        std::array<float, 3> v{};
        if (word == "v" && words >> v[0] >> v[1] >> v[2]) {
            model.positions.push_back(v);
        } else if (word == "vn" && words >> v[0] >> v[1] >> v[2]) {
            model.normals.push_back(v);
        } else if (word == "vt" && words >> v[0] >> v[1]) {
            model.coordinates.push_back({v[0], v[1]});
        } else if (word == "mtllib") {
            words >> model.library;
        } else if (word == "usemtl") {
            words >> model.material;
        } else if (word == "f") {
            auto& face = model.faces.emplace_back();
            for (auto& corner : face) {
                std::string text;
                words >> text;
                EXPECT_EQ(std::sscanf(text.c_str(), "%d/%d/%d", &corner[0], &corner[1], &corner[2]),
                          3);
            }
        }
    }
    return model;
}

TEST(CubeModelTest, HasSixFacesOfFourCornersWithinItsTables)
{
    const Model model = readModel();
    EXPECT_EQ(model.positions.size(), 8u);
    EXPECT_EQ(model.coordinates.size(), 4u);
    EXPECT_EQ(model.normals.size(), 6u);
    ASSERT_EQ(model.faces.size(), 6u);
    for (const auto& face : model.faces) {
        for (const auto& corner : face) {
            EXPECT_TRUE(corner[0] >= 1 && corner[0] <= 8);
            EXPECT_TRUE(corner[1] >= 1 && corner[1] <= 4);
            EXPECT_TRUE(corner[2] >= 1 && corner[2] <= 6);
        }
    }
}

TEST(CubeModelTest, TurnsEveryFaceOutwardsCounterClockwise)
{
    const Model model = readModel();
    for (const auto& face : model.faces) {
        std::array<std::array<float, 3>, 3> p;
        for (std::size_t i = 0; i < 3; ++i) {
            p[i] = model.positions[static_cast<std::size_t>(face[i][0] - 1)];
        }
        const auto& normal = model.normals[static_cast<std::size_t>(face[0][2] - 1)];
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t j = (i + 1) % 3;
            const std::size_t k = (i + 2) % 3;
            const float cross = (p[1][j] - p[0][j]) * (p[2][k] - p[0][k]) -
                                (p[1][k] - p[0][k]) * (p[2][j] - p[0][j]);
            EXPECT_NEAR(cross, normal[i], 1e-6f);
            // The cube stands around the origin, so its normals look away from there.
            if (normal[i] != 0) {
                EXPECT_FLOAT_EQ(p[0][i], 0.5f * normal[i]);
            }
        }
    }
}

TEST(CubeModelTest, NamesAMaterialWithAMapThatExists)
{
    const Model model = readModel();
    EXPECT_EQ(model.library, "cube.mtl");
    bool named = false;
    std::string map;
    for (const std::string& line : lines(model.library)) {
        std::istringstream words(line);
        std::string word;
        std::string value;
        words >> word >> value;
        named = named || (word == "newmtl" && value == model.material);
        if (word == "map_Kd") {
            map = value;
            EXPECT_EQ(line, "map_Kd " + value)
                << "the reader of a map's line stops at its last word";
        }
    }
    EXPECT_TRUE(named);
    ASSERT_FALSE(map.empty());
    EXPECT_TRUE(std::ifstream(std::string(KELPIX_MEDIA_DIR "/data/") + map).good());
}

} // namespace
