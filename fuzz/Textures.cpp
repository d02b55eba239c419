/// Looks at the pixels of textures: all that OpenGL would read can be read.

#include "Textures.h"

#include "Harness.h"
#include "NullGL.h"

#include <GL/glew.h>
#include <GL/glu.h>

namespace {

std::size_t bytesPerPixel(GLenum format)
{
    switch (format) {
    case GL_LUMINANCE:
        return 1;
    case GL_LUMINANCE_ALPHA:
        return 2;
    case GL_RGB:
        return 3;
    case GL_RGBA:
        return 4;
    default:
        return 0; // an error, before the pixels are read
    }
}

void readPixels(int width, int height, GLenum format, const void* pixels)
{
    fuzz::expect(width >= 0 && height >= 0, "no size is negative");
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    fuzz::reach(static_cast<const unsigned char*>(pixels), count * bytesPerPixel(format));
}

} // namespace

/// Instead of GLU's, which would take long, and no sanitizer sees what it reads. A function of the
/// program goes before those of its libraries.
extern "C" GLint GLAPIENTRY gluBuild2DMipmaps(GLenum, GLint, GLsizei width, GLsizei height,
                                              GLenum format, GLenum, const void* pixels)
{
    readPixels(width, height, format, pixels);
    return 0;
}

fuzz::TextureCheck::TextureCheck()
{
    nullgl::reset();
    nullgl::hooks().image = readPixels;
}

fuzz::TextureCheck::~TextureCheck()
{
    expect(nullgl::textures() == 0 && nullgl::lists() == 0,
           "textures and display lists are deleted");
}
