#pragma once

#include <cstddef>
#include <span>

/// A PNG file, as it is in packaging/icons.
struct WindowIconFile {
    const unsigned char* bytes;
    std::size_t size;
};

/// \return the icon of the window in each of its sizes; the build puts them into the program, which
///         may be started in any folder
std::span<const WindowIconFile> windowIconFiles();
