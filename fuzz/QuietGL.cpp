/// A GL without a context or a picture, for readers that make textures: it reads the pixels as far
/// as a GL would, and gives names. What else is called does nothing, since there is no context.
///
/// What a program defines goes before what its libraries define.

#include "Harness.h"

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

void readPixels(GLsizei width, GLsizei height, GLenum format, const void* pixels)
{
    fuzz::expect(width >= 0 && height >= 0, "no size is negative");
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    fuzz::reach(static_cast<const unsigned char*>(pixels), count * bytesPerPixel(format));
}

} // namespace

extern "C" {

const GLubyte* GLAPIENTRY glGetString(GLenum)
{
    return reinterpret_cast<const GLubyte*>("1.1");
}

GLuint GLAPIENTRY glGenLists(GLsizei)
{
    return 1;
}

void GLAPIENTRY glGenTextures(GLsizei count, GLuint* names)
{
    std::fill_n(names, count, 1u);
}

void GLAPIENTRY glTexImage2D(GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint,
                             GLenum format, GLenum, const void* pixels)
{
    readPixels(width, height, format, pixels);
}

GLint GLAPIENTRY gluBuild2DMipmaps(GLenum, GLint, GLsizei width, GLsizei height, GLenum format,
                                   GLenum, const void* pixels)
{
    readPixels(width, height, format, pixels);
    return 0;
}

} // extern "C"
