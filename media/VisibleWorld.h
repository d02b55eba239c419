#pragma once

namespace media {

/// A part of the world. The world is the water picture: x from 0 at its left edge to 1 at its right
/// one, y from 0 at its bottom to 1 at its top.
struct Region {
    float left;
    float right;
    float bottom;
    float top;
};

/// What a window of any size shows of the world: always the same height, and the more to the sides
/// the wider it is.
/// \param aspect  the window's width by its height
/// \param steps   of the mouse wheel, zooming in
constexpr Region visibleWorld(float aspect, int steps)
{
    // The camera stands at a distance of 1 and sees 60 degrees from top to bottom. The scene lays
    // the middle of the world into the middle of its view and scales it by 1.2, and each step of
    // the wheel by another 1.25.
    constexpr float TANGENT_OF_30_DEGREES = 0.57735027f;
    float half = TANGENT_OF_30_DEGREES / 1.2f;
    for (int i = 0; i < steps; ++i) {
        half /= 1.25f;
    }
    return {0.5f - half * aspect, 0.5f + half * aspect, 0.5f - half, 0.5f + half};
}

/// What the window shows as the scene starts: x and y of 0.0189 to 0.9811.
constexpr Region SQUARE_VIEW = visibleWorld(1, 0);

/// What a window of 16 to 9 shows after three steps of the wheel: x of 0.0621 to 0.9379, y of
/// 0.2537 to 0.7463. With two steps it would also show what lies beside the picture.
constexpr Region WIDE_VIEW = visibleWorld(16.0f / 9.0f, 3);

} // namespace media
