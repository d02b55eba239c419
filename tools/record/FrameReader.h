#pragma once

#include "Picture.h"

namespace record {

/// Copies drawn frames into memory, two at a time: the next frame can be drawn during a copy.
/// Every operation needs the GL context that was current in the constructor.
class FrameReader {
public:
    /// Throws std::runtime_error when GL has no memory for the copies.
    /// \param width,height  of the framebuffer, pixels
    FrameReader(int width, int height);
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;
    ~FrameReader();

    /// Starts to copy what the current framebuffer shows. At most two copies are under way: finish
    /// comes before a third start.
    void start();

    /// Waits for the older of the copies under way, which there must be.
    /// \return a reference into this object, good until the next call
    /// Throws std::runtime_error when GL cannot map the copy.
    const Picture& finish();

    /// Copies under way: 0, 1 or 2.
    int underWay() const { return started - finished; }

private:
    unsigned buffers[2] = {};
    int started = 0;
    int finished = 0;
    Picture picture;
};

} // namespace record
