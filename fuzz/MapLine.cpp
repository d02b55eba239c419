/// The input is what follows "map_Kd" in a line of a material library. The reader's result is
/// compared with that of sscanf, which defines the meaning of such lines.

#include "Harness.h"
#include "ObjAPI.h"
#include "Textures.h"

#include <bit>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

struct Map {
    unsigned clamp = 0;
    float o[3] = {0, 0, 0};
    float s[3] = {1, 1, 1};
    std::string name;
};

bool scanClamp(const char*& text, unsigned& clamp)
{
    char word[1024];
    int length = 0;
    if (std::sscanf(text, " -clamp %1023s%n", word, &length) != 1) {
        return false;
    }
    clamp = std::strcmp(word, "on") == 0 ? 1 : 0;
    text += length;
    return true;
}

/// One to three numbers after an option: the first of three formats that matches.
bool scanVector(const char*& text, const std::string& option, float* v)
{
    const std::string one = " -" + option + " %f";
    int n = 0;
    if (std::sscanf(text, (one + " %f %f%n").c_str(), v, v + 1, v + 2, &n) != 3 &&
        std::sscanf(text, (one + " %f%n").c_str(), v, v + 1, &n) != 2 &&
        std::sscanf(text, (one + "%n").c_str(), v, &n) != 1) {
        return false;
    }
    text += n;
    return true;
}

Map scan(const char* text)
{
    Map map;
    while (*text != '\0' && *text != '\r') {
        if (scanClamp(text, map.clamp) || scanVector(text, "s", map.s) ||
            scanVector(text, "o", map.o)) {
            continue;
        }
        char word[1024];
        int length = 0;
        if (std::sscanf(text, " %1023s%n", word, &length) != 1) {
            break; // white space before the end
        }
        map.name = word;
        text += length;
    }
    return map;
}

/// The name of the map, which only the writer gives.
std::string writtenName(int fi)
{
    const std::string path = fuzz::place("again.mtl", "");
    obj_write_file(fi, nullptr, path.c_str());
    std::ifstream file(path, std::ios::binary);
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with("map_Kd ")) {
            return line.substr(line.rfind(' ') + 1);
        }
    }
    return "";
}

bool same(const float* a, const float* b)
{
    // NaN included.
    return std::equal(a, a + 3, b, [](float x, float y) {
        return std::bit_cast<unsigned>(x) == std::bit_cast<unsigned>(y);
    });
}

} // namespace

void fuzz::test(std::string_view input)
{
    // One line, as it reaches the scanning of the arguments.
    const std::string_view line = input.substr(0, input.find_first_of(std::string_view("\n\0", 2)));
    if (line.size() > 1000 || (!line.empty() && std::strchr(" \t\v\f\r", line[0]) == nullptr)) {
        return;
    }
    const TextureCheck textures;
    place("m.mtl", "newmtl a\nKd 1 0 0\nd 0.5\nmap_Kd" + std::string(line));
    const std::string path = place("model.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\n");
    const int fi = call([&] { return obj_add_file(path.c_str()); });
    if (fi < 0) {
        return; // memory has run out
    }
    if (!memory::isScarce() && obj_num_mtrl(fi) == 1 && obj_get_mtrl_name(fi, 0) != nullptr) {
        const Map map = scan(std::string(line).c_str());
        float o[3];
        float s[3];
        obj_get_mtrl_o(fi, 0, 0, o);
        obj_get_mtrl_s(fi, 0, 0, s);
        expect(obj_get_mtrl_opt(fi, 0, 0) == map.clamp, "the option is that of the line");
        expect(same(o, map.o), "the offset is that of the line");
        expect(same(s, map.s), "the scale is that of the line");
        expect(writtenName(fi) == map.name, "the name is that of the line");
    }
    obj_del_file(fi);
}
