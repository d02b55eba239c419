#pragma once

#include "LiteralMath.h"

#include <vector>

/// The body of a sensor figure: 240 frames of 6 deformed spheres each.
namespace literal {

constexpr int BODY_SEGMENTS = 6;

template<typename N>
double sineOfDegrees(N degrees)
{
    return std::sin(wide(RADIANS * degrees));
}

template<typename N>
double cosineOfDegrees(N degrees)
{
    return std::cos(wide(RADIANS * degrees));
}

/// Meant to bring an angle back below 360 degrees; leaves a rounding residue near 0 instead.
template<typename N>
N residue(N degrees)
{
    return degrees + degrees / 360.0f * -360.0f;
}

/// Row i (0..16, from the top) and column j (0..16, once around) of the unit sphere.
template<typename N>
Triple<N> spherePoint(int i, int j)
{
    const N theta = static_cast<N>(i) * 180.0f / 16.0f;
    const N phi = static_cast<N>(j) * 360.0f / 16.0f;
    return {static_cast<N>(cosineOfDegrees(phi) * sineOfDegrees(theta)),
            static_cast<N>(cosineOfDegrees(theta)),
            static_cast<N>(sineOfDegrees(phi) * sineOfDegrees(theta))};
}

/// A point of the unit sphere, deformed for one frame.
template<typename N>
Triple<N> bodyPoint(const Triple<N>& onSphere, int frame)
{
    const auto [x, y, z] = onSphere;
    const N t = static_cast<N>(frame);

    const N a0 = residue(t);
    const N a1 = a0 + static_cast<N>(1.5 + sineOfDegrees(a0) * 0.5 * frame);
    const N e = residue(a1);

    const N q = 360.0f / t;
    const N c1 = residue(static_cast<N>(1.4 * frame + wide(q)));
    const N c2 = residue(static_cast<N>(2.16 * frame + wide(q)));
    const N c3 = residue(static_cast<N>(0.79 * frame + wide(q)));

    const N u = 590.0f * (y + x);
    const N w = 190.0f * (y + z);
    const double amplitude = static_cast<double>(0.08f);
    const N dz = static_cast<N>(wide(y) * (std::cos(wide(c1 + u)) * amplitude *
                                           std::cos(wide(c2 + u)) * std::cos(wide(c3 + u))));
    const N dx = static_cast<N>(wide(y) * (std::sin(wide(c1 + w)) * amplitude *
                                           std::cos(wide(c2 + w)) * std::cos(wide(c3 + w))));

    const N m = magnitude(y);
    const double h = std::cos(wide(e)) * 0.5 / (0.3 + wide(m));
    const N r = static_cast<N>(std::sqrt(wide(y * y + x * x)) + h);

    N s = static_cast<N>((sineOfDegrees(140.0f * y - e) + 2.5) * 0.3 / (1.3 + wide(m)));
    if (y < 0.0f) {
        s = s + static_cast<N>(wide(m) * (wide(m) * 0.1));
    }
    return {s * x + dx, 0.4f * ((1.4f + r) * y), s * z + dz};
}

/// Where one segment of a frame is drawn: moved along y, then scaled.
template<typename N>
struct Segment {
    N shift;
    Triple<N> scale;
};

template<typename N>
Segment<N> bodySegment(int frame, int segment)
{
    const N a = static_cast<N>(0.2 * segment);
    const N g = static_cast<N>(frame) * 1.5f;
    const N sA = static_cast<N>(1 + std::fabs(sineOfDegrees(g)));
    const N cA = static_cast<N>(1.5 + std::fabs(cosineOfDegrees(g)));
    const N kk = 1.0f / (a * 10.0f + 1.0f);
    const Triple<N> scale = {static_cast<N>(wide(kk) * (wide(sA) * 0.15000000000000002)),
                             static_cast<N>((1 + wide(a) * 10) * (wide(cA) * 0.03 * wide(kk))),
                             static_cast<N>(wide(a) * (wide(kk) * 0.1))};
    return {static_cast<N>(0.3 * -wide(a)), scale};
}

/// The quads of one segment of a frame, four corners each, in the order in which they are drawn,
/// in the segment's own frame.
template<typename N>
std::vector<std::array<Triple<N>, 4>> bodyQuads(int frame)
{
    const auto at = [frame](int i, int j) { return bodyPoint(spherePoint<N>(i, j), frame); };
    std::vector<std::array<Triple<N>, 4>> quads;
    for (int i = 1; i <= 15; ++i) {
        for (int j = 0; j <= 15; ++j) {
            quads.push_back({at(i, j), at(i, j + 1), at(i - 1, j + 1), at(i - 1, j)});
        }
    }
    return quads;
}

} // namespace literal
