#pragma once

/// An axis-aligned box, given by two opposite corners in the frame of its user.
class BBox {
public:
    float bounds[6]; ///< x0 y0 z0 x1 y1 z1

    /// Leaves the bounds unset.
    BBox() = default;

    /// Copies 6 floats from \p b.
    BBox(const float* b) { set(b); }

    /// Copies 6 floats from \p b.
    void set(const float* b);

    void set(float x0, float y0, float z0, float x1, float y1, float z1);

    /// \return a pointer into this object
    float* getBounds() { return bounds; }

    /// Prints "x: %f, %f y: %f, %f z: %f %f\n" with elements 0 to 5 in order.
    /// Fixed behavior: the labels of BBox::print pair the elements as if the box held intervals:
    /// "x:" shows x0 and y0. Pinned by BBoxTest.PrintKeepsItsLabels; do not correct.
    void print() const;
};
