#include "Cube.h"

#include "EncodePicture.h"
#include "Noise.h"

namespace media {

namespace {

constexpr const char* OBJ = "# a cube of edge 1 around the origin\n"
                            "mtllib cube.mtl\n"
                            "v -0.5 -0.5 0.5\nv 0.5 -0.5 0.5\nv 0.5 0.5 0.5\nv -0.5 0.5 0.5\n"
                            "v -0.5 -0.5 -0.5\nv 0.5 -0.5 -0.5\nv 0.5 0.5 -0.5\nv -0.5 0.5 -0.5\n"
                            "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                            "vn 0 0 1\nvn 0 0 -1\nvn 1 0 0\nvn -1 0 0\nvn 0 1 0\nvn 0 -1 0\n"
                            "usemtl coral\n"
                            "f 1/1/1 2/2/1 3/3/1 4/4/1\n"
                            "f 6/1/2 5/2/2 8/3/2 7/4/2\n"
                            "f 2/1/3 6/2/3 7/3/3 3/4/3\n"
                            "f 5/1/4 1/2/4 4/3/4 8/4/4\n"
                            "f 4/1/5 3/2/5 7/3/5 8/4/5\n"
                            "f 5/1/6 6/2/6 2/3/6 1/4/6\n";

// The model reader takes the rest of the line as the name of the map: nothing may follow it.
constexpr const char* MTL = "newmtl coral\n"
                            "Ka 0.2 0.2 0.2\n"
                            "Kd 0.9 0.9 0.9\n"
                            "Ks 0.3 0.3 0.3\n"
                            "Ns 16\n"
                            "map_Kd cube.png\n";

/// The map: a tile of worn stone with a shell's spiral, the same on every face.
Color tile(Point p, std::uint32_t seed)
{
    const Point q = p - Point{0.5f, 0.5f};
    const float r = length(q);
    const float border = std::max(std::abs(q.x), std::abs(q.y));
    const float worn = fractal(p * 9, 4, seed) - 0.5f;
    const float turns = std::atan2(q.y, q.x) / (2 * PI) + std::log(std::max(r, 0.01f)) * 1.6f;
    const float whorl = std::abs(turns - std::floor(turns) - 0.5f) * 2;
    const Color shell =
        mix(rgb(255, 150, 110), rgb(255, 235, 205), smoothstep(0.15f, 0.75f, whorl));
    Color c = mix(shell, rgb(52, 132, 140), smoothstep(0.33f, 0.36f, r + 0.02f * worn));
    c = mix(c, rgb(150, 214, 200), smoothstep(0.44f, 0.46f, border));
    return lit(c, 1 + 0.5f * worn);
}

} // namespace

std::vector<File> makeCube(const Request& request)
{
    Canvas canvas(64, 64);
    const auto seed = static_cast<std::uint32_t>(request.seed) + 50;
    canvas.paint(4, [seed](Point p) { return withAlpha(tile(p, seed), 1); });
    return {{"data/cube.obj", OBJ, "6 faces"},
            {"data/cube.mtl", MTL, "1 material"},
            {"data/cube.png", encodePng(canvas.toRgb()), "64 x 64"}};
}

} // namespace media
