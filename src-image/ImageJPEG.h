#pragma once

#include "BasicImage.h"

/// An image from a JPEG file: 3 components from a color file, 1 from a gray one, 4 from CMYK.
///
/// The buffer is padded with zeros to w * h * 3 bytes: the upload of a JPEG texture reads RGB,
/// whatever the component count.
class ImageJPEG : public BasicImage {
public:
    char* sourceFile = nullptr;      ///< heap copy of the name of the last file that was read
    unsigned char* buffer = nullptr; ///< owns; w * h * c bytes, rows bottom-up; from new[]
    int w = 0;                       ///< pixels per row
    int h = 0;                       ///< rows
    int c = 0;                       ///< bytes per pixel

    ImageJPEG() = default;
    ImageJPEG(const ImageJPEG&) = delete;
    ImageJPEG& operator=(const ImageJPEG&) = delete;

    /// Releases the buffer.
    ///
    /// Fixed behavior: the destructor of an image does not release sourceFile. Pinned by
    /// ImageJPEGTest.KeepsACopyOfTheFileNameThatOutlivesTheImage; do not correct.
    ~ImageJPEG();

    /// Reads a JPEG file. A damaged file is read as far as the library can repair it. The limit of
    /// a progressive file is 100 scans; of an image of more than 43 million pixels it is 2^32 /
    /// pixels, but at least 18.
    /// \return 1; 0 after a failure. A file that cannot be opened prints "can't open %s\n" on
    ///         standard output, one that cannot be decoded the library's message on standard error
    int read(const char* filename) override;

    /// Writes the buffer as an RGB JPEG file.
    ///
    /// Fixed behavior: ImageJPEG::write starts with buffer row 0, which read fills with the last
    /// row of a file. An image that was just read is written upside down. Pinned by
    /// ImageJPEGTest.APictureThatWasJustReadIsWrittenUpsideDown; do not correct.
    /// \param quality  0 to 100; other values count as the nearer end
    /// \return 1; 0 after a failure: there is no buffer (no file is made then), the file cannot be
    ///         opened ("can't open %s\n" on standard error), or the library refuses (its message
    ///         on standard error) because the disk is full or there are not 3 components
    int write(const char* filename, int quality) override;

    unsigned char* getPixelBuffer() override { return buffer; }
    int getWidth() override { return w; }
    int getHeight() override { return h; }
    int getComponents() override { return c; }
    void freeBuffer() override;
    char* getSourceFile() override { return sourceFile; }
    IMAGE_TYPE getImageType() override { return IMAGE_JPEG; }
};
