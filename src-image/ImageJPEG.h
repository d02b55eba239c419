#pragma once

#include "BasicImage.h"

/// A picture from a JPEG file. A colour file gives 3 components, a grey one 1, a CMYK one 4.
///
/// Behind the w * h * c bytes the buffer stays readable, as zeros, up to w * h * 3: a JPEG texture
/// is uploaded as RGB whatever its components.
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

    /// Releases the buffer. sourceFile stays: who asked for it may go on reading it.
    ~ImageJPEG();

    /// Reads a JPEG file. A damaged one is read as far as the library can repair it; a progressive
    /// one of more than 100 scans (18 to 99 for pictures of more than 43 million pixels) cannot be
    /// decoded.
    /// \return 1; 0 when it fails: a file that cannot be opened gives "can't open %s\n" on standard
    ///         output, one that cannot be decoded the library's message on standard error
    int read(const char* filename) override;

    /// Writes the buffer as an RGB JPEG file, buffer row 0 first, which is the reverse of read:
    /// writing a picture that was just read stores it upside down. That is deliberate; files that
    /// went through this pair are that way up.
    /// \param quality  0 to 100; values beyond count as the nearer end
    /// \return 1; 0 when there is no buffer (no file is made then), when the file cannot be opened
    ///         ("can't open %s\n" on standard error), or when the library refuses (its message on
    ///         standard error): the disk is full, or the pixels have not 3 components
    int write(const char* filename, int quality) override;

    unsigned char* getPixelBuffer() override { return buffer; }
    int getWidth() override { return w; }
    int getHeight() override { return h; }
    int getComponents() override { return c; }
    void freeBuffer() override;
    char* getSourceFile() override { return sourceFile; }
    IMAGE_TYPE getImageType() override { return IMAGE_JPEG; }
};
