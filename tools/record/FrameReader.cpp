#include <GL/glew.h>

#include "FrameReader.h"

#include <cstring>
#include <stdexcept>

namespace record {

FrameReader::FrameReader(int width, int height)
{
    picture.width = width;
    picture.height = height;
    picture.pixels.resize(picture.rowBytes() * static_cast<std::size_t>(height));
    glGenBuffers(2, buffers);
    for (const GLuint buffer : buffers) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
        glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(picture.pixels.size()), nullptr,
                     GL_STREAM_READ);
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    if (glGetError() != GL_NO_ERROR) {
        glDeleteBuffers(2, buffers);
        throw std::runtime_error("OpenGL has no memory for copies of the frames");
    }
}

FrameReader::~FrameReader()
{
    glDeleteBuffers(2, buffers);
}

void FrameReader::start()
{
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers[started % 2]);
    glReadPixels(0, 0, picture.width, picture.height, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    ++started;
}

const Picture& FrameReader::finish()
{
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers[finished % 2]);
    const auto* rows =
        static_cast<const std::uint8_t*>(glMapBuffer(GL_PIXEL_PACK_BUFFER, GL_READ_ONLY));
    if (rows == nullptr) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        throw std::runtime_error("OpenGL lost a frame");
    }
    // GL's rows are bottom-up.
    const std::size_t bytes = picture.rowBytes();
    for (std::size_t to = picture.pixels.size(); to > 0; rows += bytes) {
        to -= bytes;
        std::memcpy(&picture.pixels[to], rows, bytes);
    }
    glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    ++finished;
    return picture;
}

} // namespace record
