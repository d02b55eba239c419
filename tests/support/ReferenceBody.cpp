#include "ReferenceBody.h"

namespace reference {
namespace {

double sineOfDegrees(Single degrees)
{
    return std::sin((RADIANS * degrees).wide());
}

double cosineOfDegrees(Single degrees)
{
    return std::cos((RADIANS * degrees).wide());
}

/// Meant to bring an angle back below 360 degrees; leaves a rounding residue near 0 instead.
Single residue(Single degrees)
{
    return degrees + degrees / 360.0f * -360.0f;
}

} // namespace

Triple spherePoint(int i, int j)
{
    const Single theta = Single(i) * 180.0f / 16.0f;
    const Single phi = Single(j) * 360.0f / 16.0f;
    return {Single(cosineOfDegrees(phi) * sineOfDegrees(theta)), Single(cosineOfDegrees(theta)),
            Single(sineOfDegrees(phi) * sineOfDegrees(theta))};
}

Triple bodyPoint(const Triple& onSphere, int frame)
{
    const auto [x, y, z] = onSphere;
    const Single t(frame);

    const Single a0 = residue(t);
    const Single a1 = a0 + Single(1.5 + sineOfDegrees(a0) * 0.5 * frame);
    const Single e = residue(a1);

    const Single q = Single(360.0f) / t;
    const Single c1 = residue(Single(1.4 * frame + q.wide()));
    const Single c2 = residue(Single(2.16 * frame + q.wide()));
    const Single c3 = residue(Single(0.79 * frame + q.wide()));

    const Single u = Single(590.0f) * (y + x);
    const Single w = Single(190.0f) * (y + z);
    const double amplitude = static_cast<double>(0.08f);
    const Single dz(y.wide() * (std::cos((c1 + u).wide()) * amplitude * std::cos((c2 + u).wide()) *
                                std::cos((c3 + u).wide())));
    const Single dx(y.wide() * (std::sin((c1 + w).wide()) * amplitude * std::cos((c2 + w).wide()) *
                                std::cos((c3 + w).wide())));

    const Single m = magnitude(y);
    const double h = std::cos(e.wide()) * 0.5 / (0.3 + m.wide());
    const Single r(std::sqrt((y * y + x * x).wide()) + h);

    Single s((sineOfDegrees(Single(140.0f) * y - e) + 2.5) * 0.3 / (1.3 + m.wide()));
    if (y < 0.0f) {
        s = s + Single(m.wide() * (m.wide() * 0.1));
    }
    return {s * x + dx, Single(0.4f) * ((Single(1.4f) + r) * y), s * z + dz};
}

Segment bodySegment(int frame, int segment)
{
    const Single a(0.2 * segment);
    const Single g = Single(frame) * 1.5f;
    const Single sA(1 + std::fabs(sineOfDegrees(g)));
    const Single cA(1.5 + std::fabs(cosineOfDegrees(g)));
    const Single kk = Single(1.0f) / (a * 10.0f + 1.0f);
    const Triple scale = {Single(kk.wide() * (sA.wide() * 0.15000000000000002)),
                          Single((1 + a.wide() * 10) * (cA.wide() * 0.03 * kk.wide())),
                          Single(a.wide() * (kk.wide() * 0.1))};
    return {Single(0.3 * -a.wide()), scale};
}

std::vector<std::array<Triple, 4>> bodyQuads(int frame)
{
    const auto at = [frame](int i, int j) { return bodyPoint(spherePoint(i, j), frame); };
    std::vector<std::array<Triple, 4>> quads;
    for (int i = 1; i <= 15; ++i) {
        for (int j = 0; j <= 15; ++j) {
            quads.push_back({at(i, j), at(i, j + 1), at(i - 1, j + 1), at(i - 1, j)});
        }
    }
    return quads;
}

} // namespace reference
