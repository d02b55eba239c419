#include "GrayBar.h"

#include <algorithm>

namespace GrayBar {

namespace {

/// \return pixels from a cell to the next one
int pitchOf(int width)
{
    return std::max(2, width / (BITS + 4));
}

int gapOf(int width)
{
    return std::max(1, pitchOf(width) / 8);
}

int leftOf(int width)
{
    return (width - BITS * pitchOf(width)) / 2;
}

} // namespace

PixelRect cell(int width, int height, int bit)
{
    const int gap = gapOf(width);
    const PixelRect all = field(width, height);
    return {leftOf(width) + (BITS - 1 - bit) * pitchOf(width) + gap, all.y + 2 * gap,
            pitchOf(width) - gap, all.h - 4 * gap};
}

PixelRect field(int width, int height)
{
    const int gap = gapOf(width);
    return {leftOf(width) - gap, height / 16, BITS * pitchOf(width) + 3 * gap,
            std::max(5 * gap, height / 14)};
}

} // namespace GrayBar
