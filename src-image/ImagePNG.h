#pragma once

#include "BasicImage.h"

/// An image from a PNG file: gray gives 1 component, RGB 3, RGB with alpha 4. Samples of 16 bits
/// are cut to their upper 8; samples of 1, 2 or 4 bits become bytes with the same value, unscaled.
///
/// The buffer is padded with zeros to w * h * 4 bytes: the upload of a PNG texture reads RGBA,
/// whatever the component count.
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

    /// Releases the buffer, but not sourceFile, as ImageJPEG does.
    ~ImagePNG();

    /// Reads a PNG file.
    ///
    /// Fixed behavior: ImagePNG::read returns -1 after a failure, not 0, so that a caller which
    /// only asks whether the result is 0 takes it for a success. Pinned by
    /// ImagePNGTest.AJpegWhoseNamePassesFailsInTheLibrary,
    /// TextureTest.AMissingPngSaysThatItWasLoaded; do not correct.
    ///
    /// Fixed behavior: the name of a PNG file has ".png" or ".PNG" anywhere, not only at its end;
    /// another name is refused without a message. Pinned by ImagePNGTest.TheSuffixMayStandAnywhere,
    /// ImagePNGTest.ANameWithoutTheSuffixIsRefusedSilently; do not correct.
    /// \return 1; -1 after a failure. On standard error, a file that cannot be opened prints
    ///         "Can't open file %s\n", a palette or gray with alpha "Unsupported color type!\n",
    ///         an image too large for memory "Can't get pixels from PNG\n", a damaged file the
    ///         library's message
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
