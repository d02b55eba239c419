#pragma once

#include "FreeType.h"
#include "GLTypes.h"
#include "WallLayout.h"

#include <string>
#include <vector>

/// The test pattern of one tile: a border of its outermost pixels, who shows it, the frame's number
/// as text and as GrayBar, and the wall's figures.
class TilePattern {
public:
    /// Reads the font and compiles what stays the same. Needs: current GL context, in which this
    /// object is used from then on.
    /// \param rank  of the tile, an index of the layout's tiles
    /// \param font  a font file
    /// \throws std::runtime_error when the font cannot be read
    TilePattern(const WallLayout& layout, int rank, const char* font);
    TilePattern(const TilePattern&) = delete;
    TilePattern& operator=(const TilePattern&) = delete;

    /// Draws the pattern over the whole window. Needs: the GL context of construction, current, no
    /// shader program in use. Restores: everything.
    void draw(unsigned long frame);

    /// Deletes what was made in the GL context, which is current. Nothing can be drawn afterwards.
    void clean();

private:
    WallLayout layout_;
    WallTile tile_;
    std::vector<std::string> lines_; ///< of the text, without the frame
    freetype::font_data font_;
    float lineHeight_ = 0; ///< pixels
    float textWidth_ = 0;  ///< of the longest line, pixels
    GLuint list_ = 0;      ///< display list of what stays the same

    void chooseFont(const char* file);
    void drawWall() const;
    void drawArrow() const;
    void drawBorder() const;
    void drawBar(unsigned long frame) const;
    void drawText(unsigned long frame) const;
};
