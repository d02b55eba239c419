#pragma once

#include "BasicImage.h"
#include "GLTypes.h"

/// An image file that becomes a GL texture when something is first drawn with it.
///
/// A texture is constructed early, before there is a GL context, from a name and a kind only. A
/// node that draws with it calls load when isLoaded is false, and then binds *getId(). Nothing is
/// unloaded: the GL texture, the image and its pixels stay until the program ends.
///
/// \par Example
/// \snippet creature.cpp texture
class Texture {
public:
    const char* imageFileName; ///< borrows
    BasicImage* data;          ///< the image that load made; null before, never freed
    bool loaded;               ///< load has run, successfully or not
    GLuint texId;              ///< GL texture name; 0 until load makes one
    IMAGE_TYPE imageFormat;    ///< which reader to use
    int imageInfo[3];          ///< width and height in pixels, bytes per pixel; 0 before load

    /// Reads nothing and needs no GL context.
    /// \param fname  borrows; must outlive the call of load
    Texture(const char* fname, IMAGE_TYPE fmt);

    /// Reads the file and makes the texture: level 0 only, linear filters, everything else as GL
    /// sets it. For an unknown kind, or when there is no memory for the image object, it only sets
    /// loaded. Prints "loaded texture data.\n" when the reader's result is not 0.
    ///
    /// Needs: current GL context, no display list open. Changes: the binding of GL_TEXTURE_2D.
    /// Leaves a display list behind; a second call makes a second texture.
    ///
    /// Fixed behavior: the pixels are uploaded as RGB for a JPEG and as RGBA for a PNG, with the
    /// component count as the internal format. Of a gray JPEG, and of a gray or RGB PNG, the bytes
    /// are therefore grouped into wrong pixels. Pinned by
    /// TextureTest.EveryKindAndComponentCountIsUploadedAsItsKind; do not correct.
    ///
    /// Fixed behavior: after a failed read, whatever the image holds (the rows of a JPEG that were
    /// read before the error, or nothing) is still uploaded, and loaded is set. Pinned by
    /// TextureTest.AMissingJpegIsLoadedWithoutTheLoadedLine,
    /// TextureTest.APngThatIsNotSupportedIsLoadedWithoutPixels,
    /// TextureTest.AJpegThatFailsBehindItsPixelsIsUploaded; do not correct.
    ///
    /// Fixed behavior: a PNG that cannot be read prints "loaded texture data." too, since the
    /// reader's result is then -1. Pinned by TextureTest.AMissingPngSaysThatItWasLoaded; do
    /// not correct.
    void load();

    bool isLoaded() const { return loaded; }

    /// \return a pointer into this object, to the name to bind
    GLuint* getId() { return &texId; }

    /// \return the image (not the file name); null before load
    BasicImage* getSource() { return data; }

    /// \return a pointer into this object: int[3], width, height, bytes per pixel
    int* getInfo() { return imageInfo; }
};
