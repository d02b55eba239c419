#pragma once

#include "BasicImage.h"

/// A picture from a PNG file: grey gives 1 component, RGB 3, RGB with alpha 4. Samples of 16 bits
/// are cut to their upper 8; samples of 1, 2 or 4 bits become bytes with the same value, unscaled.
///
/// Behind the w * h * c bytes the buffer stays readable, as zeros, up to w * h * 4: a PNG texture
/// is uploaded as RGBA whatever its components.
class ImagePNG : public BasicImage {
public:
    char* sourceFile = nullptr;      ///< heap copy of the name of the last file that was read
    unsigned char* buffer = nullptr; ///< owns; w * h * c bytes, rows bottom-up; from new[]
    int w = 0;                       ///< pixels per row
    int h = 0;                       ///< rows
    int c = 0;                       ///< bytes per pixel

    ImagePNG() = default;
    ImagePNG(const ImagePNG&) = delete;
    ImagePNG& operator=(const ImagePNG&) = delete;

    /// Releases the buffer. sourceFile stays: who asked for it may go on reading it.
    ~ImagePNG();

    /// Reads a PNG file.
    /// \param filename  must contain ".png" or ".PNG" somewhere, else it is refused silently
    /// \return 1; -1 (not 0: textures count it as a success) when it fails: a file that cannot be
    ///         opened gives "Can't open file %s\n", a palette or grey with alpha "Unsupported color
    ///         type!\n", a picture too large for memory "Can't get pixels from PNG\n", a damaged
    ///         file the library's message, all on standard error
    int read(const char* filename) override;

    /// Does nothing: PNG files are not written. \return 0
    int write(const char* filename, int quality) override;

    unsigned char* getPixelBuffer() override { return buffer; }
    int getWidth() override { return w; }
    int getHeight() override { return h; }
    int getComponents() override { return c; }
    void freeBuffer() override;
    char* getSourceFile() override { return sourceFile; }
    IMAGE_TYPE getImageType() override { return IMAGE_PNG; }
};
