#pragma once

#include "BasicImage.h"

#include <cstddef>
#include <cstdio>
#include <memory>

/// Decoding image files, with the limits that keep a file of a few bytes from taking hours or all
/// memory. Private to this library and to the OBJ models of kelpix::core: each has its own reader
/// on top, which decides where the pixels go and what is said of a file that cannot be decoded.
///
/// A further kind of file takes a value of IMAGE_TYPE, a decoder in newImageDecoder and a place in
/// ImageFile::uploadedComponents; for textures a class beside ImagePNG and a case in newImage of
/// src-core/Texture.cpp, for models the names in ObjImage.cpp.

/// The size and kind of pixels, from a file's header.
struct ImageFrame {
    std::size_t width = 0;    ///< pixels per row
    std::size_t height = 0;   ///< rows
    std::size_t channels = 0; ///< bytes per pixel, as all samples become 8 bits
    int bitDepth = 8;         ///< bits per sample after decoding
    bool hasPalette = false;  ///< the samples are indices into a palette
};

/// Options in which the readers differ.
struct DecoderOptions {
    /// PNG: the library's messages go to standard error, as a JPEG's do.
    bool saysWhatIsWrong = true;
    bool readsTrailer = true; ///< PNG: what follows the pixels has to be right too
    long memory = 0;          ///< JPEG: the most bytes that the library takes; 0 = no limit
};

/// Decodes one file: readHeader, start and readRows, once each and in this order. A step that fails
/// ends the decoding.
class ImageDecoder {
public:
    ImageDecoder() = default;
    ImageDecoder(const ImageDecoder&) = delete;
    ImageDecoder& operator=(const ImageDecoder&) = delete;
    virtual ~ImageDecoder() = default;

    /// Reads as far as the size of the image.
    /// \param file  borrows, until the decoder is deleted
    virtual bool readHeader(std::FILE* file) = 0;

    /// Prepares for the pixels. It may take as much memory as the pixels, and as much time: a
    /// progressive JPEG is decoded here.
    virtual bool start() = 0;

    /// Reads all pixels and what follows them.
    /// \param pixels  width * height * channels bytes: receives the rows bottom-up, not padded
    /// \return false on failure. A JPEG's rows that were not reached are then 0; any row of a PNG
    ///         may be incomplete
    virtual bool readRows(unsigned char* pixels) = 0;

    /// Valid after readHeader.
    const ImageFrame& frame() const { return frame_; }

    /// \return which of the limits here the file exceeds, in a few words; empty when it is another
    ///         failure, or none
    virtual const char* exceededLimit() const { return ""; }

protected:
    ImageFrame frame_;
};

/// \return null for an unknown kind, and when memory runs out
std::unique_ptr<ImageDecoder> newImageDecoder(IMAGE_TYPE type, const DecoderOptions& options);

// One for each kind of file: null when memory runs out.
std::unique_ptr<ImageDecoder> newJPEGDecoder(const DecoderOptions& options);
std::unique_ptr<ImageDecoder> newPNGDecoder(const DecoderOptions& options);
