#pragma once

#include "BasicImage.h"
#include "GLTypes.h"

/// An image file that becomes a GL texture when it is first drawn with.
///
/// Textures are made early, before there is a GL context, with a name and a kind only. What draws
/// with one calls load when isLoaded is false, and then binds *getId(). There is no way back: the
/// texture, the image and its pixels stay until the program ends.
class Texture {
public:
    const char* imageFileName; ///< borrows
    BasicImage* data;          ///< the image that load made; null before, never freed
    bool loaded;               ///< load has run, successfully or not
    GLuint texId;              ///< GL texture name; 0 until load makes one
    IMAGE_TYPE imageFormat;    ///< which reader to use
    int imageInfo[3];          ///< width and height in pixels, bytes per pixel; 0 before load

    /// Reads nothing and needs no GL context.
    /// \param fname  borrows; must be there until load has run
    Texture(const char* fname, IMAGE_TYPE fmt);

    /// Reads the file and makes the texture: level 0 only, linear filters, everything else as GL
    /// sets it. An unknown kind only sets loaded, and so does a picture for which there is no
    /// memory at all.
    ///
    /// Needs: current GL context, no display list open. Changes: the binding of GL_TEXTURE_2D.
    /// Leaves a display list behind; a second call makes a second texture.
    ///
    /// The pixels are handed to GL as RGB for a JPEG and as RGBA for a PNG, and the component count
    /// is the internal format, whatever components the file has: deliberate, pictures were made to
    /// look right that way. What a read that fails left is uploaded all the same.
    ///
    /// Prints "loaded texture data.\n" when the reader's result is not 0. That includes -1, by
    /// which a PNG that could not be read tells so.
    void load();

    bool isLoaded() const { return loaded; }

    /// \return a pointer into this object, to the name to bind
    GLuint* getId() { return &texId; }

    /// \return the image (not the file name); null before load
    BasicImage* getSource() { return data; }

    /// \return a pointer into this object: int[3], width, height, bytes per pixel
    int* getInfo() { return imageInfo; }
};
