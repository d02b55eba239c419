// Reading OBJ models, from the file to the finished model.

#include "Child.h"
#include "Data.h"
#include "Job.h"
#include "MemoryStream.h"
#include "Peers.h"

#include "ObjAPI.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

template<typename... Numbers>
void append(std::string& text, const char* format, Numbers... numbers)
{
    char line[256];
    std::snprintf(line, sizeof line, format, numbers...);
    text += line;
}

/// A wavy sheet of 2 * side * side triangles, whose corners have all three numbers.
std::string newSheet(int side)
{
    std::string text = "o sheet\n";
    std::string coordinates;
    std::string normals;
    for (int i = 0; i <= side; ++i) {
        for (int j = 0; j <= side; ++j) {
            const double u = static_cast<double>(j) / side;
            const double v = static_cast<double>(i) / side;
            const double x = 2 * u - 1;
            const double z = 2 * v - 1;
            append(text, "v %f %f %f\n", x, std::sin(3 * x) * std::cos(2 * z), z);
            append(coordinates, "vt %f %f\n", u, v);
            const double nx = -3 * std::cos(3 * x) * std::cos(2 * z);
            const double nz = 2 * std::sin(3 * x) * std::sin(2 * z);
            const double length = std::sqrt(nx * nx + 1 + nz * nz);
            append(normals, "vn %f %f %f\n", nx / length, 1 / length, nz / length);
        }
    }
    text += coordinates + normals;
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            const int a = i * (side + 1) + j + 1;
            const int b = a + 1;
            const int c = a + side + 1;
            const int d = c + 1;
            append(text, "f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, b, b, b, d, d, d);
            append(text, "f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, d, d, d, c, c, c);
        }
    }
    return text;
}

constexpr int MATERIALS = 2000;

/// A library of six lines for each material.
std::string newLibrary()
{
    std::string text;
    for (int i = 0; i < MATERIALS; ++i) {
        append(text, "newmtl m%d\nKd 0.%04d 0.5 0.25\nKa 0.1 0.1 0.1\n", i, i);
        text += "Ks 0.9 0.9 0.9\nNs 32.0\nd 1.0\n";
    }
    return text;
}

/// Triangles of one material each.
std::string newPatchwork(int triangles)
{
    std::string text = "mtllib library.mtl\n";
    for (int i = 0; i < triangles; ++i) {
        const int column = i % 100;
        const int row = i / 100;
        append(text, "v %f %f 0.0\n", column / 100.0, row / 100.0);
    }
    text += "v 0 0 1\nv 1 0 0\n";
    for (int i = 0; i < triangles; ++i) {
        append(text, "usemtl m%d\nf %d %d %d\n", i * 7919 % MATERIALS, i + 1, triangles + 1,
               triangles + 2);
    }
    return text;
}

/// What the corners of all triangles look like: positions and texture coordinates.
using Corners = std::vector<std::array<float, 5>>;

Corners cornersOf(int fi)
{
    Corners corners;
    for (int si = 0; si < obj_num_surf(fi); ++si) {
        for (int pi = 0; pi < obj_num_poly(fi, si); ++pi) {
            int triangle[3];
            obj_get_poly(fi, si, pi, triangle);
            for (const int vi : triangle) {
                std::array<float, 5> corner;
                obj_get_vert_v(fi, vi, corner.data());
                obj_get_vert_t(fi, vi, corner.data() + 3);
                corners.push_back(corner);
            }
        }
    }
    return corners;
}

/// Line by line and word by word, with the formatted input whose meaning the reader has.
Corners readLiterally(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "r"),
                                                               std::fclose);
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 2>> coordinates;
    Corners corners;
    char line[1024];
    while (std::fgets(line, sizeof line, file.get()) != nullptr) {
        char word[1024];
        int at = 0;
        if (std::sscanf(line, "%s%n", word, &at) != 1) {
            continue;
        }
        const std::string_view kind = word;
        const char* text = line + at;
        if (kind == "v") {
            auto& v = positions.emplace_back();
            std::sscanf(text, "%f %f %f", &v[0], &v[1], &v[2]);
        } else if (kind == "vt") {
            auto& t = coordinates.emplace_back();
            std::sscanf(text, "%f %f", &t[0], &t[1]);
        } else if (kind == "f") {
            int v = 0;
            int t = 0;
            int n = 0;
            for (; std::sscanf(text, "%d/%d/%d%n", &v, &t, &n, &at) == 3; text += at) {
                const auto& position = positions[static_cast<std::size_t>(v - 1)];
                const auto& coordinate = coordinates[static_cast<std::size_t>(t - 1)];
                corners.push_back(
                    {position[0], position[1], position[2], coordinate[0], coordinate[1]});
            }
        }
    }
    return corners;
}

std::uint64_t hashOf(const Corners& corners)
{
    return bench::hashOf(corners.data(), corners.size() * sizeof corners[0]);
}

void load(const std::string& path)
{
    obj_del_file(obj_add_file(path.c_str()));
}

bench::Job sheet()
{
    constexpr int SIDE = 708;
    const std::string path = bench::writeData("sheet.obj", newSheet(SIDE));
    bench::Job job = {"OBJ, 1,002,528 triangles",
                      "triangle",
                      2 * SIDE * SIDE,
                      {{.name = "kelpix",
                        .run = [path] { load(path); },
                        .result =
                            [path] {
                                const int fi = obj_add_file(path.c_str());
                                const std::uint64_t hash = hashOf(cornersOf(fi));
                                obj_del_file(fi);
                                return hash;
                            }},
                       {.name = "reference",
                        .run = [path] { readLiterally(path); },
                        .result = [path] { return hashOf(readLiterally(path)); }}}};
    bench::append(job.contenders, bench::peers::objReaders(path));
    return job;
}

bench::Job patchwork(const char* name, int triangles)
{
    bench::writeData("library.mtl", newLibrary());
    const std::string path =
        bench::writeData("patchwork" + std::to_string(triangles) + ".obj", newPatchwork(triangles));
    bench::Job job = {name,
                      "usemtl",
                      static_cast<double>(triangles),
                      {{.name = "kelpix", .run = [path] { load(path); }}}};
    bench::append(job.contenders, bench::peers::objReadersWithMaterials(path));
    return job;
}

/// The same, each in turn, while another process streams memory.
bench::Job underPressure(bench::Job job)
{
    job.name += ", memory busy";
    const auto stream = std::make_shared<bench::MemoryStream>();
    for (bench::Contender& contender : job.contenders) {
        contender.measure = [stream, run = std::move(contender.run)] {
            constexpr int TIMES = 5;
            const double start = bench::wallClock();
            for (int i = 0; i < TIMES; ++i) {
                run();
            }
            return (bench::wallClock() - start) / TIMES;
        };
        contender.run = nullptr;
    }
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv,
                      {sheet, [] { return patchwork("OBJ, 2,000 usemtl", 2000); },
                       [] { return patchwork("OBJ, 20,000 usemtl", 20000); },
                       [] { return underPressure(patchwork("OBJ, 20,000 usemtl", 20000)); }});
}
