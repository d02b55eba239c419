#pragma once

#include <array>
#include <string>
#include <vector>

/// An image file as libjpeg or libpng sees it, rows from the top. Not read by the program's own
/// readers, so that these tests stand on their own.
struct Picture {
    int width = 0; ///< 0 when the file cannot be read
    int height = 0;
    int channels = 0;
    int bitDepth = 0;
    int colorType = -1;                              ///< PNG only
    std::vector<std::array<int, 2>> samplingFactors; ///< JPEG only: horizontal, vertical
    std::vector<unsigned char> bytes;

    int at(int x, int y, int channel) const
    {
        return bytes[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)) *
                         static_cast<std::size_t>(channels) +
                     static_cast<std::size_t>(channel)];
    }
};

Picture readJpeg(const std::string& path);
Picture readPng(const std::string& path);
