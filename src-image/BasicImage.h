#pragma once

/// The kinds of image files. The values are fixed; a variable of this type may hold others.
enum IMAGE_TYPE : int { IMAGE_JPEG = 0, IMAGE_PNG = 1 };

/// A picture that is read from a file into one buffer for a GL texture.
///
/// The buffer holds 8 bits per channel, channels interleaved, pixels left to right, rows without
/// padding and bottom-up: row 0 is the last row of the file, since the origin of a GL texture lies
/// at the lower left.
///
/// Nothing here throws or needs a GL context. What goes wrong is told by the result and at most a
/// line of text. A failed read leaves the previous picture, or what was read so far, or nothing.
/// After every read the buffer holds at least width * height * components bytes.
class BasicImage {
public:
    /// Reads a file into the pixel buffer, in place of what was there.
    /// A picture of more than 1 GiB counts as damaged.
    /// \param filename  copied; only a regular file counts as one that can be opened
    /// \return 1; when it fails the value of the concrete class, which need not be 0
    virtual int read(const char* filename) = 0;

    /// Writes the pixel buffer to a file.
    /// \param quality  0 (small) to 100 (good), for kinds that know it
    /// \return 1; 0 when it fails
    virtual int write(const char* filename, int quality) = 0;

    /// \return the buffer, which stays the image's own; null when there is none. It is good until
    ///         the next read, freeBuffer or the end of the image
    virtual unsigned char* getPixelBuffer() = 0;

    /// \return pixels per row
    virtual int getWidth() = 0;

    /// \return rows
    virtual int getHeight() = 0;

    /// \return bytes per pixel: 1, 3 or 4 (a JPEG of an unknown colour space may have others)
    virtual int getComponents() = 0;

    /// Releases the pixel buffer; the sizes stay.
    virtual void freeBuffer() = 0;

    /// \return the name of the file of the last read that succeeded, null before the first. It is
    ///         good until the next one and outlives the image
    virtual char* getSourceFile() = 0;

    virtual IMAGE_TYPE getImageType() = 0;

    /// Copies a window of a picture, stepping through the source with whole strides: the stride is
    /// the whole part of the scale, 1.5 steps by 1. Bytes whose source lies outside the picture
    /// become 0. A scale that is no finite number gives stride 0.
    /// \param inbuf          width * height * comp bytes; null is a picture without pixels
    /// \param width, height  size of the source in pixels
    /// \param copy           receives w * h * comp bytes
    /// \param x, y           the window's first pixel in the source
    /// \param w, h           size of the window in pixels; 0 or less leaves nothing to do
    /// \param comp           bytes per pixel; 0 or less leaves nothing to do
    /// \param scale          source pixels per copied pixel
    /// \return 1; 0, with a line on standard output and \p copy untouched, when \p scale is 0 or
    ///         (x, y) lies outside the source
    static int getSubImage(const unsigned char* inbuf, int width, int height, unsigned char* copy,
                           int x, int y, int w, int h, int comp, float scale);

protected:
    // Not virtual: nobody deletes an image through this interface.
    ~BasicImage() = default;
};
