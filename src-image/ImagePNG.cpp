#include "ImagePNG.h"

#include "ImageDecoder.h"
#include "ImageFile.h"
#include "OpenFile.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

/// Textures take gray, RGB, and RGB with alpha, but neither a palette nor gray with alpha.
bool isSupported(const ImageFrame& frame)
{
    return !frame.hasPalette && frame.channels != 2;
}

} // namespace

ImagePNG::~ImagePNG()
{
    delete[] buffer;
}

int ImagePNG::read(const char* filename)
{
    if (filename == nullptr ||
        (std::strstr(filename, ".PNG") == nullptr && std::strstr(filename, ".png") == nullptr)) {
        return -1;
    }
    const auto decoder = newImageDecoder(IMAGE_PNG, {});
    if (decoder == nullptr) {
        return -1;
    }
    const Files::Handle file = Files::openRegular(filename);
    if (file == nullptr) {
        std::fprintf(stderr, "Can't open file %s\n", filename);
        return -1;
    }
    if (!decoder->readHeader(file.get())) {
        return -1;
    }
    const ImageFrame& frame = decoder->frame();
    std::unique_ptr<unsigned char[]> pixels(
        ImageFile::allocate(IMAGE_PNG, frame.width, frame.height, frame.channels));
    if (pixels == nullptr) {
        std::fprintf(stderr, "Can't get pixels from PNG\n");
        return -1;
    }
    if (!decoder->start() || !decoder->readRows(pixels.get())) {
        return -1;
    }

    // From here on the sizes are the new file's. There are no components until it is known that
    // textures take its pixels.
    freeBuffer();
    w = static_cast<int>(frame.width);
    h = static_cast<int>(frame.height);
    c = 0;
    if (!isSupported(frame)) {
        std::fprintf(stderr, "Unsupported color type!\n");
        return -1;
    }
    if (frame.bitDepth != 8) {
        std::fprintf(stderr, "Unsupported bit depth!\n");
        return -1;
    }
    c = static_cast<int>(frame.channels);
    buffer = pixels.release();
    delete[] sourceFile;
    sourceFile = ImageFile::copyName(filename);
    return sourceFile != nullptr ? 1 : -1;
}

int ImagePNG::write(const char* /*filename*/, int /*quality*/)
{
    return 0;
}

void ImagePNG::freeBuffer()
{
    delete[] buffer;
    buffer = nullptr;
}
