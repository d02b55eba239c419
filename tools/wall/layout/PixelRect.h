#pragma once

/// A rectangle of whole pixels. Whoever holds one says where its origin is.
struct PixelRect {
    int x = 0;
    int y = 0;
    int w = 0;
    int h = 0;

    bool operator==(const PixelRect&) const = default;
};
