#pragma once

#include "ObjStore.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

/// A model of the store as plain values: what tests compare.
struct Model {
    struct Property {
        std::string map_name; ///< "(none)" without one
        int opt = 0;
        std::array<float, 4> c = {};
        std::array<float, 3> o = {};
        std::array<float, 3> s = {1, 1, 1};
    };
    struct Material {
        std::string name = "(none)";
        std::array<Property, 5> kv;
    };
    struct Surface {
        int mi = 0;
        std::vector<std::array<int, 3>> triangles;
        std::vector<std::array<int, 2>> lines;
        bool operator==(const Surface&) const = default;
    };
    struct Vertex {
        std::array<float, 3> u = {};
        std::array<float, 3> n = {};
        std::array<float, 2> t = {};
        std::array<float, 3> v = {};
    };
    std::vector<Material> materials;
    std::vector<Surface> surfaces;
    std::vector<Vertex> vertices;
};

/// Copies a model out of the store.
Model model_of(int fi);

/// Everything of a model as text; floats as their bits, all NaN alike.
std::string describe(const Model& model);

/// The base of the tests of the OBJ library: a folder of its own for files, and an empty store
/// after each test.
class ObjFixture {
public:
    ObjFixture();
    ~ObjFixture();
    ObjFixture(const ObjFixture&) = delete;
    ObjFixture& operator=(const ObjFixture&) = delete;

    /// \return the path of a file in the folder
    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    /// Writes a file.
    /// \return its path
    std::string write(const std::string& name, std::string_view text) const;

    std::string read(const std::string& name) const;

private:
    std::filesystem::path folder_;
};

class ObjTest : public testing::Test, public ObjFixture {};
