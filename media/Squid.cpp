#include "Squid.h"

#include "Encode.h"

namespace media {

std::vector<File> makeSquid(const Request&)
{
    Canvas canvas(256, 256);
    canvas.paint(2, [](Point p) {
        const Point q{p.x * 2 - 1, p.y * 2 - 1};
        const float r = length(Point{q.x * 1.6f, q.y + 0.3f});
        return withAlpha(rgb(230, 120, 160), smoothstep(0.62f, 0.58f, r));
    });
    return {{"data/squid.png", encodePng(canvas.toRgba()), "256 x 256"}};
}

} // namespace media
