#pragma once

#include "Color.h"

#include <cstddef>
#include <vector>

namespace media {

/// What an image file holds: 8 bits a channel, interleaved, the top row first.
struct Bitmap {
    int width = 0;
    int height = 0;
    int channels = 0; ///< 3 = RGB, 4 = RGBA with straight alpha
    std::vector<unsigned char> bytes;
};

/// A picture to paint on. Pixels hold float colors with premultiplied alpha, so that layers can be
/// blurred and laid over each other. The top row is the first. A new canvas is transparent.
///
/// Points of what is painted have y down. Unless it is told otherwise the canvas is one unit wide
/// and begins at (0, 0).
class Canvas {
public:
    Canvas(int width, int height) : Canvas(width, height, {0, 0}, static_cast<float>(width)) {}

    /// \param corner  the point at the upper left corner
    /// \param unit    how many pixels a unit has
    Canvas(int width, int height, Point corner, float unit);

    /// An empty canvas of the same size and place.
    Canvas another() const { return {columns, rows, begin, scale}; }

    int width() const { return columns; }
    int height() const { return rows; }

    /// \return a reference into this object; x and y are in range
    Color& at(int x, int y) { return pixels[index(x, y)]; }
    const Color& at(int x, int y) const { return pixels[index(x, y)]; }

    /// The point at the center of a pixel.
    Point center(int x, int y) const
    {
        return begin +
               Point{static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f} * (1 / scale);
    }

    /// Where a point lies, in pixels from the upper left corner.
    Point pixel(Point p) const { return (p - begin) * scale; }

    /// The pixels of a unit.
    float unit() const { return scale; }

    /// Lays a color (straight alpha) over a pixel. Outside the canvas nothing happens.
    void blend(int x, int y, Color color, float coverage = 1);

    /// Lays another canvas of the same size over this one.
    void draw(const Canvas& layer);

    /// Copies another canvas of the same width into this one, from row \p top on. It fits.
    void copyRows(const Canvas& from, int top);

    /// Blurs the picture: three box blurs, which together are close to a Gaussian.
    /// \param deviation  its standard deviation in pixels
    void blur(float deviation);

    /// Fills the canvas. Each pixel is the mean of samples x samples calls of \p shade.
    /// \param shade  Color shade(Point): a point of the unit square (y down) to a color with
    ///               straight alpha
    template<typename Shade>
    void paint(int samples, Shade shade);

    /// The picture on black, without alpha.
    /// \param dither  amplitude of the noise that is added before rounding, in steps of 1/255: it
    ///                hides the steps of slow gradients
    Bitmap toRgb(float dither = 0) const;

    /// The picture with alpha. Transparent pixels carry the color of the nearest painted ones, so
    /// that linear filtering shows no fringe of another color at the edge.
    Bitmap toRgba() const;

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(x);
    }

    int columns;
    int rows;
    Point begin;
    float scale;
    std::vector<Color> pixels;
};

template<typename Shade>
void Canvas::paint(int samples, Shade shade)
{
    const float step = 1.0f / static_cast<float>(samples);
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            Color sum;
            for (int j = 0; j < samples; ++j) {
                for (int i = 0; i < samples; ++i) {
                    const float u = static_cast<float>(x) + (static_cast<float>(i) + 0.5f) * step;
                    const float v = static_cast<float>(y) + (static_cast<float>(j) + 0.5f) * step;
                    const Color c =
                        shade(Point{u / static_cast<float>(columns), v / static_cast<float>(rows)});
                    sum = sum + Color{c.r * c.a, c.g * c.a, c.b * c.a, c.a};
                }
            }
            at(x, y) = sum * (step * step);
        }
    }
}

} // namespace media
