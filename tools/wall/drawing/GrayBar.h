#pragma once

#include "PixelRect.h"

/// The bar of a test pattern that shows the number of the frame to a camera: a row of cells, white
/// for 1 and dark gray for 0, the highest bit at the left. From frame to frame one cell changes, so
/// a photograph that catches two frames is wrong by one frame at most, and two tiles in one
/// photograph are compared cell by cell.
namespace GrayBar {

constexpr int BITS = 16;
constexpr unsigned long NUMBERS = 1UL << BITS; ///< the frame is shown modulo this

/// \return the code of a number below NUMBERS: neighbors, the last and the first too, differ in
///         one bit (F. Gray, U.S. patent 2,632,058)
constexpr unsigned encode(unsigned number)
{
    return number ^ (number >> 1);
}

/// \return the number of a code of BITS bits
constexpr unsigned decode(unsigned code)
{
    for (unsigned shift = 1; shift < static_cast<unsigned>(BITS); shift *= 2) {
        code ^= code >> shift;
    }
    return code;
}

/// The place of a bit's cell in a window of a size, origin at the lower left. Cells do not touch.
/// \param bit  BITS - 1, the leftmost, to 0
PixelRect cell(int width, int height, int bit);

/// The place of the black field around all cells.
PixelRect field(int width, int height);

} // namespace GrayBar
