#include "RampOverlay.h"

#include "SavedState.h"

#include <GL/glew.h>
#include <array>

namespace {

/// A stretch of a side of the window, and that of the texture which it shows.
struct Stretch {
    float start;
    float end;
    float textureStart;
    float textureEnd;
};

/// The stretches of the first ramp, of what is even, and of the second ramp.
std::array<Stretch, 3> stretchesOf(int first, int last, int pixels, int texels)
{
    const auto place = [&](double texel) { return static_cast<float>(texel / texels); };
    const double middle = first + 0.5;
    const auto start = static_cast<float>(first);
    const auto end = static_cast<float>(pixels - last);
    return {{{0, start, 0, place(first)},
             {start, end, place(middle), place(middle)},
             {end, static_cast<float>(pixels), place(texels - last), 1}}};
}

void drawQuad(const Stretch& x, const Stretch& y)
{
    glTexCoord2f(x.textureStart, y.textureStart);
    glVertex2f(x.start, y.start);
    glTexCoord2f(x.textureEnd, y.textureStart);
    glVertex2f(x.end, y.start);
    glTexCoord2f(x.textureEnd, y.textureEnd);
    glVertex2f(x.end, y.end);
    glTexCoord2f(x.textureStart, y.textureEnd);
    glVertex2f(x.start, y.end);
}

} // namespace

RampOverlay::RampOverlay(const WallTile& tile)
    : factors_(Ramp::factorsOf(tile)), width_(tile.desktop.w), height_(tile.desktop.h),
      needed_(factors_.changeSomething())
{
}

void RampOverlay::draw()
{
    if (!needed_) {
        return;
    }
    const SavedState saved;
    if (texture_ == 0) {
        makeTexture();
    }
    SavedState::setFrame({0, 0, width_, height_}, width_, height_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(GL_ZERO, GL_SRC_COLOR);
    drawParts();
}

void RampOverlay::clean()
{
    glDeleteTextures(1, &texture_);
    texture_ = 0;
}

/// One texel for a pixel in the ramps; nothing is interpolated.
void RampOverlay::makeTexture()
{
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
        glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    }
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
        glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
    }
    for (const GLenum offset : {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS}) {
        glPixelStorei(offset, 0);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, factors_.columns, factors_.rows, 0, GL_RGB,
                 GL_UNSIGNED_BYTE, factors_.rgb.data());
}

/// The corners and edges, whose texels are pixels, and the middle. Stretches without pixels draw
/// none.
void RampOverlay::drawParts() const
{
    glBegin(GL_QUADS);
    for (const Stretch& y : stretchesOf(factors_.bottom, factors_.top, height_, factors_.rows)) {
        for (const Stretch& x :
             stretchesOf(factors_.left, factors_.right, width_, factors_.columns)) {
            drawQuad(x, y);
        }
    }
    glEnd();
}
