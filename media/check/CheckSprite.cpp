#include "CheckSprite.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace media {

namespace {

/// Sprites are drawn at half opacity: alpha below FAINT cannot be seen then. A texel with an alpha
/// of SOLID or more is part of the figure.
constexpr int FAINT = 8;
constexpr int SOLID = 64;

/// How wide the window of 740 pixels shows a sprite.
constexpr int SHOWN_PIXELS = 31;

/// Opacity that the scene gives to sprites.
constexpr float OPACITY = 0.5f;

/// The largest alpha among the texels that lie \p ring texels from the edge.
int alphaOfRing(const Sprite& sprite, int ring)
{
    int largest = 0;
    for (int y = ring; y < sprite.height() - ring; ++y) {
        for (int x = ring; x < sprite.width() - ring; ++x) {
            const bool onRing = x == ring || y == ring || x == sprite.width() - 1 - ring ||
                                y == sprite.height() - 1 - ring;
            if (onRing) {
                largest = std::max(largest, sprite.alpha(x, y));
            }
        }
    }
    return largest;
}

void checkBorder(const Sprite& sprite, FileReport& report)
{
    if (alphaOfRing(sprite, 0) >= FAINT) {
        report.wrong("the picture reaches its edge: it is cut off there, and a line of it shows at "
                     "the opposite edge; leave 2 transparent pixels all round");
    } else if (alphaOfRing(sprite, 1) >= FAINT) {
        report.hint("only 1 transparent pixel at the edge: the outline gets jagged as the sprite "
                    "turns; leave 2 all round");
    }
}

/// Linear filtering mixes the colors of a solid texel and its transparent neighbor, so the color of
/// the transparent one shows. Remarks on figures with a dark fringe.
void checkFringe(const Sprite& sprite, FileReport& report)
{
    constexpr int STEPS[][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    int meetings = 0;
    int dark = 0;
    for (int y = 1; y < sprite.height() - 1; ++y) {
        for (int x = 1; x < sprite.width() - 1; ++x) {
            if (sprite.alpha(x, y) < SOLID) {
                continue;
            }
            for (const auto& step : STEPS) {
                const int nx = x + step[0];
                const int ny = y + step[1];
                if (sprite.alpha(nx, ny) >= FAINT) {
                    continue;
                }
                ++meetings;
                const int own = sprite.brightness(x, y);
                const int beside = sprite.brightness(nx, ny);
                dark += beside * 2 < own && own - beside > 40 ? 1 : 0;
            }
        }
    }
    if (dark * 10 > meetings) {
        report.wrong("transparent pixels beside the figure are dark, which gives it a dark fringe; "
                     "let them have the color of their neighbors");
    }
}

/// \return whether a texel can be seen
bool checkVisible(const Sprite& sprite, FileReport& report)
{
    for (int y = 0; y < sprite.height(); ++y) {
        for (int x = 0; x < sprite.width(); ++x) {
            if (sprite.alpha(x, y) >= FAINT) {
                return true;
            }
        }
    }
    report.wrong("is transparent all over: there is nothing to see");
    return false;
}

/// The scene draws sprites without mipmaps: a pixel is mixed from 2 by 2 texels, and those between
/// are left out.
void checkTexels(const Sprite& sprite, FileReport& report)
{
    constexpr int MOST = 4;
    const int texels = std::max(sprite.width(), sprite.height());
    if (texels > MOST * SHOWN_PIXELS) {
        report.hint("is shown " + std::to_string(SHOWN_PIXELS) + " pixels wide, which leaves out " +
                    "most of its " + std::to_string(texels) +
                    ": it flickers as it moves; scale it to 64 x 64");
    }
}

/// How far a texel's color is from the water's when it is drawn over it, 0 .. 442.
float contrast(const unsigned char* texel, const WaterColor& water)
{
    float square = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        const float d = static_cast<float>(texel[c]) - water[c];
        square += d * d;
    }
    return OPACITY * static_cast<float>(texel[3]) / 255 * std::sqrt(square);
}

/// The mean contrast of the solid texels to a part of the water, of all that can be seen where none
/// is solid.
float meanContrast(const Sprite& sprite, const WaterColor& water)
{
    for (const int least : {SOLID, FAINT}) {
        float sum = 0;
        int count = 0;
        for (int y = 0; y < sprite.height(); ++y) {
            for (int x = 0; x < sprite.width(); ++x) {
                if (sprite.alpha(x, y) >= least) {
                    sum += contrast(sprite.at(x, y), water);
                    ++count;
                }
            }
        }
        if (count > 0) {
            return sum / static_cast<float>(count);
        }
    }
    return 0;
}

void checkVisibility(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report)
{
    constexpr float SEEN = 12;
    if (water.empty()) {
        return;
    }
    float sum = 0;
    for (const WaterColor& part : water) {
        sum += meanContrast(sprite, part);
    }
    const float mean = sum / static_cast<float>(water.size());
    if (mean < SEEN) {
        report.wrong("is nearly invisible: at half opacity its color is only " +
                     decimal(static_cast<double>(mean), 0) +
                     " of 255 from that of the water; make it brighter, or more opaque");
    }
}

/// The second moments of a figure about its center, in parts of the picture's size, and where the
/// center lies below the middle.
struct Shape {
    double xx = 0;
    double yy = 0;
    double xy = 0;
    double below = 0;

    explicit Shape(const Sprite& sprite)
    {
        double mass = 0;
        double x = 0;
        double y = 0;
        const auto each = [&](const auto& take) {
            for (int row = 0; row < sprite.height(); ++row) {
                for (int column = 0; column < sprite.width(); ++column) {
                    take(sprite.alpha(column, row), (column + 0.5) / sprite.width() - 0.5,
                         (row + 0.5) / sprite.height() - 0.5);
                }
            }
        };
        each([&](int alpha, double px, double py) {
            mass += alpha;
            x += alpha * px;
            y += alpha * py;
        });
        if (mass == 0) {
            return;
        }
        x /= mass;
        y /= mass;
        below = y;
        each([&](int alpha, double px, double py) {
            xx += alpha * (px - x) * (px - x) / mass;
            yy += alpha * (py - y) * (py - y) / mass;
            xy += alpha * (px - x) * (py - y) / mass;
        });
    }

    /// How much longer the figure is than wide; 1 for a disc.
    double elongation() const
    {
        const double middle = (xx + yy) / 2;
        const double half = std::hypot((xx - yy) / 2, xy);
        return middle > half ? std::sqrt((middle + half) / (middle - half)) : 1;
    }

    /// By how many degrees the long axis is turned counterclockwise from upright, -90 .. 90.
    double turn() const { return std::atan2(2 * xy, yy - xx) * 90 / PI_DOUBLE; }

    static constexpr double PI_DOUBLE = 3.14159265358979;
};

} // namespace

void checkSprite(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report)
{
    if (!checkVisible(sprite, report)) {
        return;
    }
    checkBorder(sprite, report);
    checkFringe(sprite, report);
    checkTexels(sprite, report);
    checkVisibility(sprite, water, report);
}

void checkHeading(const Sprite& sprite, FileReport& report)
{
    constexpr double LONG = 1.3;
    constexpr double ACROSS = 70; // degrees
    constexpr double ASKEW = 15;
    constexpr double NOTICED = 0.02; // of the height
    const Shape shape(sprite);
    const double turn = shape.elongation() > LONG ? shape.turn() : 0;
    if (std::abs(turn) > ACROSS) {
        report.hint("lies across the picture: a fish whose head is at a side swims sideways; turn "
                    "it so that its head is at the top");
    } else if (std::abs(turn) > ASKEW) {
        report.hint("leans to the " + std::string(turn > 0 ? "left" : "right") + " by " +
                    decimal(std::abs(turn), 0) +
                    " degrees, and swims askew; turn it so that its head is at the top");
    } else if (shape.below > NOTICED) {
        // A fish seen from above is widest near its head, so most of its texels lie there.
        report.hint("most of the fish lies in the lower half: if that is its head it swims "
                    "backwards; fish head towards the top of the picture");
    }
}

} // namespace media
