#pragma once

/// A place in the water's frame: the unit square, (0, 0) at its bottom left.
struct Place {
    double x = 0;
    double y = 0;

    Place operator+(Place other) const { return {x + other.x, y + other.y}; }
    Place operator-(Place other) const { return {x - other.x, y - other.y}; }
    Place operator*(double factor) const { return {x * factor, y * factor}; }
    bool operator==(const Place&) const = default;
};
