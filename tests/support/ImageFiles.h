#pragma once

#include <cstddef>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

/// A path below the temporary folder that no other test uses; what lies there in the end is
/// removed.
class TempPath {
public:
    /// \param suffix  end of the name, ".png"
    explicit TempPath(const std::string& suffix);
    TempPath(const TempPath&) = delete;
    TempPath& operator=(const TempPath&) = delete;
    ~TempPath();

    const char* name() const { return path.c_str(); }
    bool exists() const;
    /// This process has the file open.
    bool isOpen() const;
    Bytes read() const;
    void write(const Bytes& bytes) const;

private:
    std::string path;
};

/// An image of 8 bits to a channel, rows top-down.
struct Picture {
    std::size_t width;
    std::size_t height;
    std::size_t channels;
    Bytes bytes;

    /// The bytes with the rows in the opposite order.
    Bytes bottomUp() const;
};

/// Pseudo-random bytes, the same on every run.
Picture noise(std::size_t width, std::size_t height, std::size_t channels);

/// An image without edges, which JPEG changes little.
Picture gradient(std::size_t width, std::size_t height, std::size_t channels);

/// Writes a PNG file.
/// \param colorType  libpng's
/// \param rows       the file's rows, top-down, packed as PNG packs them
void writePng(const TempPath& path, std::size_t width, std::size_t height, int colorType,
              int bitDepth, const Bytes& rows, bool interlaced = false);

/// Writes an image of 1, 2, 3 or 4 channels as gray, gray with alpha, RGB, RGB with alpha.
void writePng(const TempPath& path, const Picture& picture, bool interlaced = false);

/// A chunk of a PNG file.
/// \param type  four letters
Bytes pngChunk(const std::string& type, const Bytes& data);

/// A chunk of a name and \p size MiB of dashes, compressed as zTXt and iCCP have them.
Bytes compressedPngChunk(const std::string& type, int size);

/// The bytes, repeated \p count times.
Bytes repeated(std::size_t count, const Bytes& bytes);

/// A PNG file with more chunks behind its header.
Bytes withChunks(const Bytes& file, const Bytes& chunks);

enum class JpegKind { baseline, progressive };

/// Writes an image of 1, 3 or 4 channels as a gray, YCbCr or CMYK JPEG file.
void writeJpeg(const TempPath& path, const Picture& picture, int quality = 90,
               JpegKind kind = JpegKind::baseline);

/// A JPEG file with a second frame header in place of its end: its pixels are read, then it fails.
Bytes withTwoFrames(const Bytes& file);

/// Decodes an undamaged file by libjpeg alone.
Picture readJpeg(const TempPath& path);
