#include "Stroke.h"

#include <limits>

namespace media {

namespace {

/// A rectangle of pixels: x0 <= x < x1, y0 <= y < y1.
struct Area {
    int x0;
    int y0;
    int x1;
    int y1;

    /// The pixels of a canvas that lie within \p reach of the line from \p a to \p b.
    static Area around(Point a, Point b, float reach, int width, int height)
    {
        const auto low = [reach](float v, float w, int most) {
            return std::clamp(static_cast<int>(std::floor(std::min(v, w) - reach)), 0, most);
        };
        const auto high = [reach](float v, float w, int most) {
            return std::clamp(static_cast<int>(std::ceil(std::max(v, w) + reach)), 0, most);
        };
        return {low(a.x, b.x, width), low(a.y, b.y, height), high(a.x, b.x, width),
                high(a.y, b.y, height)};
    }

    void include(const Area& other)
    {
        x0 = std::min(x0, other.x0);
        y0 = std::min(y0, other.y0);
        x1 = std::max(x1, other.x1);
        y1 = std::max(y1, other.y1);
    }
};

/// The nearest place of the stroke to a pixel, and how far outside of it the pixel lies (negative:
/// inside).
struct Nearest {
    float outside = std::numeric_limits<float>::max();
    float along = 0;
    float across = 0;
};

} // namespace

std::vector<Touch> Stroke::touch(int width, int height, float softness) const
{
    std::vector<Touch> touched;
    if (joints.size() < 2) {
        return touched;
    }
    const std::size_t segments = joints.size() - 1;
    std::vector<Area> areas;
    for (std::size_t i = 0; i < segments; ++i) {
        const float reach = std::max(joints[i].halfWidth, joints[i + 1].halfWidth) + softness;
        areas.push_back(Area::around(joints[i].at, joints[i + 1].at, reach, width, height));
    }
    Area all = areas[0];
    for (const Area& area : areas) {
        all.include(area);
    }
    const int columns = all.x1 - all.x0;
    const int rows = all.y1 - all.y0;
    if (columns <= 0 || rows <= 0) {
        return touched;
    }

    std::vector<Nearest> field(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    const auto at = [&](int x, int y) -> Nearest& {
        return field[static_cast<std::size_t>(y - all.y0) * static_cast<std::size_t>(columns) +
                     static_cast<std::size_t>(x - all.x0)];
    };
    for (std::size_t i = 0; i < segments; ++i) {
        const Joint& a = joints[i];
        const Joint& b = joints[i + 1];
        const Point way = b.at - a.at;
        const float square = std::max(dot(way, way), 1e-12f);
        for (int y = areas[i].y0; y < areas[i].y1; ++y) {
            for (int x = areas[i].x0; x < areas[i].x1; ++x) {
                const Point p{static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f};
                const Point from = p - a.at;
                const float t = clamp01(dot(from, way) / square);
                const float away = length(p - mix(a.at, b.at, t));
                const float half = mix(a.halfWidth, b.halfWidth, t);
                Nearest& known = at(x, y);
                if (away - half < known.outside) {
                    const float aside = (way.x * from.y - way.y * from.x) / std::sqrt(square);
                    known = {away - half,
                             (static_cast<float>(i) + t) / static_cast<float>(segments),
                             std::clamp(aside / std::max(half, 1e-6f), -1.0f, 1.0f)};
                }
            }
        }
    }
    for (int y = all.y0; y < all.y1; ++y) {
        for (int x = all.x0; x < all.x1; ++x) {
            const Nearest& known = at(x, y);
            const float coverage = clamp01(0.5f - known.outside / softness);
            if (coverage > 0) {
                touched.push_back({x, y, coverage, known.along, known.across});
            }
        }
    }
    return touched;
}

} // namespace media
