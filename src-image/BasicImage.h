#pragma once

/// The kinds of image files. The values are fixed; a variable of this type may hold others.
enum IMAGE_TYPE : int { IMAGE_JPEG = 0, IMAGE_PNG = 1 };

/// An image that is read from a file into one pixel buffer for a GL texture.
///
/// The buffer holds 8 bits per channel, channels interleaved, pixels left to right, rows without
/// padding and bottom-up: row 0 is the last row of the file, since the origin of a GL texture is
/// its lower left corner.
///
/// Nothing here throws or needs a GL context. A failure is reported by the result and by at most
/// one line of text. After a failed read the buffer holds the previous image, or the rows that were
/// read so far, or there is none. If there is a buffer, it holds at least width * height *
/// components bytes.
class BasicImage {
public:
    /// Reads a file into the pixel buffer, in place of what was there.
    /// An image of more than 1 GiB counts as damaged.
    /// \param filename  copied. Anything but a regular file counts as a file that cannot be opened
    /// \return 1; after a failure the value of the concrete class, which need not be 0
    virtual int read(const char* filename) = 0;

    /// Writes the pixel buffer to a file.
    /// \param quality  0 (small) to 100 (good), for kinds of files that have it
    /// \return 1; 0 when it fails
    virtual int write(const char* filename, int quality) = 0;

    /// \return a pointer to the buffer, which the image owns; null when there is none. Good until
    ///         the next read, freeBuffer, or the end of the image
    virtual unsigned char* getPixelBuffer() = 0;

    /// \return pixels per row
    virtual int getWidth() = 0;

    /// \return rows
    virtual int getHeight() = 0;

    /// \return bytes per pixel: 1, 3 or 4 (a JPEG of an unknown color space may have others)
    virtual int getComponents() = 0;

    /// Releases the pixel buffer; the sizes stay.
    virtual void freeBuffer() = 0;

    /// \return the name of the file of the last successful read; null before the first. Good until
    ///         the next successful read; it outlives the image
    virtual char* getSourceFile() = 0;

    virtual IMAGE_TYPE getImageType() = 0;

    /// Copies a window of an image, scaled down by leaving out pixels. Bytes whose source lies
    /// outside the image become 0. A scale that is not finite gives a stride of 0.
    ///
    /// Fixed behavior: getSubImage steps through the source by whole pixels. The stride is the
    /// whole part of the scale, so that a scale of 1.5 copies as 1 does. Pinned by
    /// GetSubImageTest.TheScaleIsCutToAWholeStride; do not correct.
    ///
    /// Fixed behavior: the two messages of getSubImage about a start outside the image differ
    /// in their punctuation. Pinned by GetSubImageTest.AStartOutsideThePictureIsRefused; do
    /// not correct.
    /// \param inbuf          width * height * comp bytes; null is an image without pixels
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
