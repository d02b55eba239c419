#include "Canvas.h"

#include "Random.h"

namespace media {

namespace {

unsigned char toByte(float v)
{
    return static_cast<unsigned char>(std::lround(clamp01(v) * 255.0f));
}

/// One box blur along a line of \p count pixels that lie \p stride apart. The end pixels repeat
/// beyond the ends.
void blurLine(Color* line, std::size_t stride, int count, int radius, std::vector<Color>& copy)
{
    copy.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        copy[static_cast<std::size_t>(i)] = line[static_cast<std::size_t>(i) * stride];
    }
    const auto read = [&](int i) {
        return copy[static_cast<std::size_t>(std::clamp(i, 0, count - 1))];
    };
    const float weight = 1.0f / static_cast<float>(2 * radius + 1);
    Color sum;
    for (int i = -radius; i <= radius; ++i) {
        sum = sum + read(i);
    }
    for (int i = 0; i < count; ++i) {
        line[static_cast<std::size_t>(i) * stride] = sum * weight;
        sum = sum + read(i + radius + 1) + read(i - radius) * -1;
    }
}

} // namespace

Canvas::Canvas(int width, int height, Point corner, float unit)
    : columns(width), rows(height), begin(corner), scale(unit),
      pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
{
}

void Canvas::blend(int x, int y, Color color, float coverage)
{
    if (x < 0 || y < 0 || x >= columns || y >= rows) {
        return;
    }
    const float alpha = color.a * coverage;
    Color& under = at(x, y);
    under = Color{color.r * alpha, color.g * alpha, color.b * alpha, alpha} + under * (1 - alpha);
}

void Canvas::draw(const Canvas& layer)
{
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const Color& over = layer.pixels[i];
        pixels[i] = over + pixels[i] * (1 - over.a);
    }
}

void Canvas::copyRows(const Canvas& from, int top)
{
    std::copy(from.pixels.begin(), from.pixels.end(),
              pixels.begin() + std::ptrdiff_t{top} * columns);
}

void Canvas::blur(float deviation)
{
    // Three boxes of width w have the variance of a Gaussian with deviation^2 = (w^2 - 1) / 4.
    const int radius =
        static_cast<int>(std::lround((std::sqrt(4 * deviation * deviation + 1) - 1) / 2));
    if (radius < 1) {
        return;
    }
    std::vector<Color> copy;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < rows; ++y) {
            blurLine(&at(0, y), 1, columns, radius, copy);
        }
        for (int x = 0; x < columns; ++x) {
            blurLine(&at(x, 0), static_cast<std::size_t>(columns), rows, radius, copy);
        }
    }
}

Bitmap Canvas::toRgb(float dither) const
{
    Bitmap image{columns, rows, 3, {}};
    image.bytes.reserve(pixels.size() * 3);
    Random random(1);
    for (const Color& c : pixels) {
        const float one = random.unit();
        const float noise = (one - random.unit()) * dither / 255;
        for (const float channel : {c.r, c.g, c.b}) {
            image.bytes.push_back(toByte(channel + noise));
        }
    }
    return image;
}

Bitmap Canvas::toRgba() const
{
    // Spreads color from the painted pixels, one ring of neighbors a round, until all have one.
    std::vector<Color> colors(pixels.size());
    std::vector<bool> known(pixels.size(), false);
    bool some = false;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const Color& c = pixels[i];
        if (c.a > 0.5f / 255) {
            colors[i] = {c.r / c.a, c.g / c.a, c.b / c.a, 1};
            known[i] = true;
            some = true;
        }
    }
    for (bool missing = some; missing;) {
        missing = false;
        const std::vector<bool> before = known;
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < columns; ++x) {
                if (before[index(x, y)]) {
                    continue;
                }
                Color sum;
                for (int v = std::max(y - 1, 0); v <= std::min(y + 1, rows - 1); ++v) {
                    for (int u = std::max(x - 1, 0); u <= std::min(x + 1, columns - 1); ++u) {
                        if (before[index(u, v)]) {
                            sum = sum + colors[index(u, v)];
                        }
                    }
                }
                if (sum.a > 0) {
                    colors[index(x, y)] = sum * (1 / sum.a);
                    known[index(x, y)] = true;
                } else {
                    missing = true;
                }
            }
        }
    }
    Bitmap image{columns, rows, 4, {}};
    image.bytes.reserve(pixels.size() * 4);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const Color& c = colors[i];
        for (const float channel : {c.r, c.g, c.b, pixels[i].a}) {
            image.bytes.push_back(toByte(channel));
        }
    }
    return image;
}

} // namespace media
