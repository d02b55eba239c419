#include "ImageDecoder.h"
#include "ImageFile.h"
#include "ObjStore.h"
#include "OpenFile.h"

#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include <GL/glu.h>

namespace {

/// An image in memory: 8 bits per component, rows bottom-up.
struct Image {
    int width = 0;
    int height = 0;
    int components = 0; ///< 0: indices into a palette, of which no texture is made
    std::unique_ptr<unsigned char[]> pixels;
};

/// The names that models may give their maps.
constexpr struct {
    std::string_view suffix;
    IMAGE_TYPE type;
} KINDS[] = {{".png", IMAGE_PNG}, {".PNG", IMAGE_PNG}, {".jpg", IMAGE_JPEG}, {".JPG", IMAGE_JPEG}};

std::optional<IMAGE_TYPE> kind_of(std::string_view path)
{
    for (const auto& kind : KINDS) {
        if (path.ends_with(kind.suffix)) {
            return kind.type;
        }
    }
    return std::nullopt;
}

/// \return null when the image is too large or memory runs out
std::unique_ptr<unsigned char[]> allocate(const ImageFrame& frame)
{
    // GLU computes with sizes up to twice as large in an int: this limit keeps them in range.
    const std::size_t bytes = frame.width * frame.height * frame.channels;
    return std::unique_ptr<unsigned char[]>(
        bytes < ImageFile::MAX_BYTES ? new (std::nothrow) unsigned char[bytes] : nullptr);
}

bool decode_image(std::FILE* file, IMAGE_TYPE type, Image& image)
{
    // PNG errors are not reported; for no kind is what follows the pixels checked.
    const DecoderOptions options = {.saysWhatIsWrong = type != IMAGE_PNG, .readsTrailer = false};
    const auto decoder = newImageDecoder(type, options);
    if (decoder == nullptr || !decoder->readHeader(file)) {
        return false;
    }
    const ImageFrame& frame = decoder->frame();
    image.width = static_cast<int>(frame.width);
    image.height = static_cast<int>(frame.height);
    image.components = frame.hasPalette ? 0 : static_cast<int>(frame.channels);
    // Allocated before start, in which the decoder may take as much memory again.
    image.pixels = allocate(frame);
    return image.pixels != nullptr && decoder->start() && decoder->readRows(image.pixels.get());
}

/// 0 leaves the texture without an image.
GLenum format_of(int components)
{
    switch (components) {
    case 1:
        return GL_LUMINANCE;
    case 2:
        return GL_LUMINANCE_ALPHA;
    case 3:
        return GL_RGB;
    case 4:
        return GL_RGBA;
    default:
        return 0;
    }
}

GLuint make_texture(const Image& image)
{
    const GLenum format = format_of(image.components);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);

    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1); // rows are not padded
    gluBuild2DMipmaps(GL_TEXTURE_2D, static_cast<GLint>(format), image.width, image.height, format,
                      GL_UNSIGNED_BYTE, image.pixels.get());
    glPopClientAttrib();

    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    return texture;
}

} // namespace

namespace obj {

GLuint read_img(const char* path)
{
    const std::optional<IMAGE_TYPE> kind = kind_of(path == nullptr ? "" : path);
    if (!kind || glGetString(GL_VERSION) == nullptr) {
        return 0;
    }
    const Files::Handle file = Files::openRegular(path);
    Image image;
    if (file == nullptr || !decode_image(file.get(), *kind, image)) {
        return 0;
    }
    obj_init_gl();
    return make_texture(image);
}

} // namespace obj
