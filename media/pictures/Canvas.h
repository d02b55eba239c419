#pragma once

#include "Color.h"

#include <cstddef>
#include <vector>

namespace media {

/// What an image file holds: 8 bits a channel, interleaved, the top row first.
struct Bitmap {
    int width = 0;
    int height = 0;
    int channels = 0; ///< 3 = red, green, blue; 4 = and alpha, not multiplied in
    std::vector<unsigned char> bytes;
};

/// A picture to paint on. Pixels hold float colours with the alpha multiplied in, so that layers
/// can be blurred and laid over each other; the top row is the first. A new canvas is transparent.
class Canvas {
public:
    Canvas(int width, int height);

    int width() const { return columns; }
    int height() const { return rows; }

    /// \return a reference into this object; x and y are in range
    Color& at(int x, int y) { return pixels[index(x, y)]; }
    const Color& at(int x, int y) const { return pixels[index(x, y)]; }

    /// Where the centre of a pixel lies in the unit square, y down.
    Point centre(int x, int y) const
    {
        return {(static_cast<float>(x) + 0.5f) / static_cast<float>(columns),
                (static_cast<float>(y) + 0.5f) / static_cast<float>(rows)};
    }

    /// Lays a colour (alpha not multiplied in) over a pixel. Outside the canvas nothing happens.
    void blend(int x, int y, Color colour, float coverage = 1);

    /// Lays another canvas of the same size over this one.
    void draw(const Canvas& layer);

    /// Softens the picture as a lens out of focus does: three box blurs, which together are close
    /// to a Gaussian of the given standard deviation in pixels.
    void blur(float deviation);

    /// Fills the canvas from \p shade, called with points of the unit square (y down) and giving a
    /// colour with the alpha not multiplied in. Each pixel is the mean of samples x samples calls.
    template<typename Shade>
    void paint(int samples, Shade shade);

    /// The picture on black, without alpha. \p dither, in steps of 1/255, is the width of the
    /// noise that is added before rounding: it hides the steps of slow gradients.
    Bitmap toRgb(float dither = 0) const;

    /// The picture with alpha. Transparent pixels carry the colour of the nearest painted ones, so
    /// that linear filtering mixes in no foreign colour at the rim.
    Bitmap toRgba() const;

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(x);
    }

    int columns;
    int rows;
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
