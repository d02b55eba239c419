#include "Texture.h"

#include "ImageFile.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"

#include <cstdio>
#include <new>

namespace {

/// \return null for an unknown kind, or when memory runs out
BasicImage* newImage(IMAGE_TYPE format)
{
    switch (format) {
    case IMAGE_JPEG:
        return new (std::nothrow) ImageJPEG;
    case IMAGE_PNG:
        return new (std::nothrow) ImagePNG;
    }
    return nullptr;
}

/// Makes a texture of the image's pixels and binds it.
void upload(BasicImage& image, GLuint* texId)
{
    const GLenum pixelFormat =
        ImageFile::uploadedComponents(image.getImageType()) == 3 ? GL_RGB : GL_RGBA;
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glGenTextures(1, texId);
    glBindTexture(GL_TEXTURE_2D, *texId);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    // Rows are not padded. GL reads the pixels when it compiles the command, not when the display
    // list is called, and glPixelStorei is executed at once, not compiled.
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, image.getComponents(), image.getWidth(), image.getHeight(), 0,
                 pixelFormat, GL_UNSIGNED_BYTE, image.getPixelBuffer());
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    glEndList();
    glCallList(list);
}

} // namespace

Texture::Texture(const char* fname, IMAGE_TYPE fmt)
    : imageFileName(fname), data(nullptr), loaded(false), texId(0), imageFormat(fmt), imageInfo{}
{
}

void Texture::load()
{
    BasicImage* image = newImage(imageFormat);
    if (image != nullptr) {
        if (image->read(imageFileName) != 0) {
            std::puts("loaded texture data.");
        }
        upload(*image, &texId);
        imageInfo[0] = image->getWidth();
        imageInfo[1] = image->getHeight();
        imageInfo[2] = image->getComponents();
        data = image;
    }
    loaded = true;
}
