#pragma once

#include "Picture.h"

#include <string>

namespace record {

/// How the frames of a live stream are written.
enum class LiveFormat {
    none,
    raw, ///< four bytes for each pixel: red, green, blue and one that means nothing
    y4m, ///< YUV4MPEG2, 4:2:0
};

/// The header of a YUV4MPEG2 stream.
std::string y4mHeader(int width, int height, int fps);

/// A picture as planes of Y, Cb and Cr: ITU-R BT.601 in its limited range (Y 16 to 235, Cb and Cr
/// 16 to 240), as ffmpeg converts films. Each Cb and Cr is that of the mean of 2 x 2 pixels. \param
/// picture  with an even width and height
std::vector<std::uint8_t> toYuv420(const Picture& picture);

/// A film that is written while it is played, frame by frame, to a pipe.
class LiveStream {
public:
    /// \param descriptor  borrows; of the pipe, or of any other file
    LiveStream(int descriptor, LiveFormat format, int width, int height, int fps);

    /// Writes the next frame, and waits as long as the reader does.
    /// \return false when nobody reads any more
    /// Throws std::runtime_error, with a line for the user, when it cannot be written.
    bool write(const Picture& frame);

private:
    int output;
    LiveFormat format;
    std::string header; ///< to be written before the frame

    bool put(const void* data, std::size_t bytes) const;
};

} // namespace record
