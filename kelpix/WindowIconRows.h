#pragma once

#include <span>

/// The icon of the window in one size, decoded.
struct WindowIconRows {
    const unsigned char* pixels; ///< RGBA, rows from the top
    int width;                   ///< pixels
    int height;
};

/// \return the icon in each of its sizes; the build puts them into the program, which may be
///         started in any folder
std::span<const WindowIconRows> windowIconRows();
