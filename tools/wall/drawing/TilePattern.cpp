#include "TilePattern.h"

#include "FontFile.h"
#include "GrayBar.h"
#include "SavedState.h"
#include "WallFigures.h"

#include <GL/glew.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

using Color = std::array<GLubyte, 3>;

constexpr Color WHITE = {255, 255, 255};
constexpr Color BLACK = {0, 0, 0};
constexpr Color ZERO = {56, 56, 56}; ///< of a cell of the bar
constexpr Color DIAGONAL = {255, 208, 64};
constexpr Color CIRCLE = {64, 208, 255};

/// Tiles near each other differ in color, so that a swapped one is seen from afar.
constexpr std::array<Color, 6> GROUNDS = {
    {{72, 24, 24}, {24, 60, 30}, {26, 36, 84}, {66, 54, 16}, {56, 24, 68}, {16, 58, 66}}};

void setColor(const Color& color)
{
    glColor3ub(color[0], color[1], color[2]);
}

void drawRect(const PixelRect& rect)
{
    glRecti(rect.x, rect.y, rect.x + rect.w, rect.y + rect.h);
}

/// A line of some thickness between two corners of the wall.
void drawDiagonal(float x0, float y0, float x1, float y1, float thickness)
{
    const float length = std::hypot(x1 - x0, y1 - y0);
    const float across = (y0 - y1) / length * thickness / 2;
    const float up = (x1 - x0) / length * thickness / 2;
    glBegin(GL_QUADS);
    glVertex2f(x0 - across, y0 - up);
    glVertex2f(x1 - across, y1 - up);
    glVertex2f(x1 + across, y1 + up);
    glVertex2f(x0 + across, y0 + up);
    glEnd();
}

void drawCircle(const WallFigures::Circle& circle, float thickness)
{
    constexpr int CORNERS = 256;
    glBegin(GL_QUAD_STRIP);
    for (int corner = 0; corner <= CORNERS; ++corner) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(corner) / CORNERS;
        for (const float radius : {circle.radius - thickness / 2, circle.radius + thickness / 2}) {
            glVertex2f(circle.middle.x + radius * std::cos(angle),
                       circle.middle.y + radius * std::sin(angle));
        }
    }
    glEnd();
}

std::string frameLine(unsigned long frame)
{
    return "frame " + std::to_string(frame);
}

/// \return how far the pen moves for a text
long widthOf(FontFile& font, const std::string& text)
{
    long width = 0;
    for (const char c : text) {
        width += font.glyph(static_cast<unsigned char>(c)).advance;
    }
    return width;
}

long widthOf(FontFile& font, const std::vector<std::string>& lines)
{
    // Room for the largest number that a frame can have in a year.
    long width = widthOf(font, frameLine(4000000000));
    for (const std::string& line : lines) {
        width = std::max(width, widthOf(font, line));
    }
    return std::max(width, 1L);
}

} // namespace

TilePattern::TilePattern(const WallLayout& layout, int rank, const char* font)
    : layout_(layout), tile_(layout.tiles[static_cast<std::size_t>(rank)])
{
    const auto text = [](int number) { return std::to_string(number); };
    lines_ = {tile_.host, "rank " + text(tile_.rank) + " window " + text(tile_.window),
              "column " + text(tile_.column) + " row " + text(tile_.row),
              text(tile_.desktop.w) + " x " + text(tile_.desktop.h) + " at " + text(tile_.place.x) +
                  " " + text(tile_.place.y)};
    chooseFont(font);
    list_ = glGenLists(1);
    glNewList(list_, GL_COMPILE);
    drawWall();
    glEndList();
}

/// Chooses the largest font in which the text takes at most its share of the window.
void TilePattern::chooseFont(const char* file)
{
    constexpr unsigned TRIAL = 48;
    constexpr float SHARE_OF_WIDTH = 0.55F;
    constexpr float SHARE_OF_HEIGHT = 0.45F;
    constexpr float LARGEST = 150; // more is only blurred by the distance from which it is read
    FontFile trial(file, TRIAL);
    const auto width = static_cast<float>(widthOf(trial, lines_));
    const auto lines = static_cast<float>(lines_.size() + 1);
    const float byWidth = SHARE_OF_WIDTH * static_cast<float>(tile_.desktop.w) / width * TRIAL;
    // freetype::print puts lines so far apart.
    const float byHeight = SHARE_OF_HEIGHT * static_cast<float>(tile_.desktop.h) / lines * 0.63F;
    const float height = std::clamp(std::min(byWidth, byHeight), 1.0F, LARGEST);
    font_.init(file, static_cast<unsigned>(height));
    lineHeight_ = font_.h / 0.63F;
    textWidth_ = width * font_.h / TRIAL;
}

void TilePattern::draw(unsigned long frame)
{
    const SavedState saved;
    const int width = tile_.desktop.w;
    const int height = tile_.desktop.h;
    const PixelRect window = {0, 0, width, height};
    // A window is never larger than this, but the framebuffer may be.
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, width, height);
    SavedState::setFrame(window, width, height);
    setColor(GROUNDS[static_cast<std::size_t>(tile_.column + 3 * tile_.row) % GROUNDS.size()]);
    drawRect(window);
    SavedState::setFrame(tile_.viewport, layout_.width, layout_.height);
    glCallList(list_);
    SavedState::setFrame(window, width, height);
    drawArrow();
    drawBar(frame);
    drawText(frame);
    drawBorder();
}

void TilePattern::clean()
{
    font_.clean();
    glDeleteLists(list_, 1);
    list_ = 0;
}

/// The figures on the wall, in its frame.
void TilePattern::drawWall() const
{
    const WallFigures figures(layout_);
    const auto width = static_cast<float>(layout_.width);
    const auto height = static_cast<float>(layout_.height);
    setColor(CIRCLE);
    for (const WallFigures::Circle& circle : figures.circles) {
        drawCircle(circle, figures.thickness);
    }
    setColor(DIAGONAL);
    drawDiagonal(0, 0, width, height, figures.thickness);
    drawDiagonal(0, height, width, 0, figures.thickness);
}

/// An arrow at the upper edge, which points up.
void TilePattern::drawArrow() const
{
    const int width = tile_.desktop.w;
    const int height = tile_.desktop.h;
    const int size = std::max(2, std::min(width, height) / 16);
    setColor(WHITE);
    glBegin(GL_TRIANGLES);
    glVertex2i(width / 2 - size, height - 2 * size);
    glVertex2i(width / 2 + size, height - 2 * size);
    glVertex2i(width / 2, height - 2);
    glEnd();
}

/// The outermost pixels.
void TilePattern::drawBorder() const
{
    const int width = tile_.desktop.w;
    const int height = tile_.desktop.h;
    setColor(WHITE);
    drawRect({0, 0, width, 1});
    drawRect({0, height - 1, width, 1});
    drawRect({0, 0, 1, height});
    drawRect({width - 1, 0, 1, height});
}

void TilePattern::drawBar(unsigned long frame) const
{
    const int width = tile_.desktop.w;
    const int height = tile_.desktop.h;
    const unsigned code = GrayBar::encode(static_cast<unsigned>(frame % GrayBar::NUMBERS));
    setColor(BLACK);
    drawRect(GrayBar::field(width, height));
    for (int bit = 0; bit < GrayBar::BITS; ++bit) {
        setColor((code >> bit & 1U) != 0 ? WHITE : ZERO);
        drawRect(GrayBar::cell(width, height, bit));
    }
}

void TilePattern::drawText(unsigned long frame) const
{
    const auto lines = static_cast<float>(lines_.size() + 1);
    // Glyphs are sharp at whole pixels.
    const float x = std::floor((static_cast<float>(tile_.desktop.w) - textWidth_) / 2);
    const float top = std::floor((static_cast<float>(tile_.desktop.h) + lines * lineHeight_) / 2);
    const float margin = lineHeight_ / 3;
    // The figures of the wall shine through.
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4ub(0, 0, 0, 150);
    glRectf(x - margin, top - lines * lineHeight_ - margin, x + textWidth_ + margin, top + margin);
    setColor(WHITE);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    std::string text;
    for (const std::string& line : lines_) {
        text += line + "\n";
    }
    text += frameLine(frame);
    // The first line's pen stands on its base line.
    freetype::print(1, font_, x, top - std::floor(lineHeight_ * 0.8F), "%s", text.c_str());
}
