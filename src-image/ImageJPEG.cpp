#include "ImageJPEG.h"

#include "ImageDecoder.h"
#include "ImageFile.h"
#include "JPEGErrors.h"
#include "OpenFile.h"

namespace {

struct Compressor {
    my_error_mgr errors = {};
    jpeg_compress_struct jpeg = {};

    Compressor() { jpeg.err = installErrors(errors); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { jpeg_destroy_compress(&jpeg); }
};

/// Library errors land here. Everything with a destructor lives in the caller, so that the jump
/// skips none.
bool encode(Compressor& compressor, std::FILE* file, ImageJPEG& image, int quality)
{
    if (setjmp(compressor.errors.setjmp_buffer) != 0) {
        return false;
    }
    jpeg_compress_struct& jpeg = compressor.jpeg;
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(image.getWidth());
    jpeg.image_height = static_cast<JDIMENSION>(image.getHeight());
    jpeg.input_components = image.getComponents();
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg_start_compress(&jpeg, TRUE);

    const std::size_t rowStride =
        std::size_t{jpeg.image_width} * static_cast<std::size_t>(jpeg.input_components);
    while (jpeg.next_scanline < jpeg.image_height) {
        JSAMPROW row = image.buffer + rowStride * jpeg.next_scanline;
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

/// Prints the limit that a file exceeds, if that is why it cannot be decoded.
void sayLimit(const ImageDecoder& decoder)
{
    if (*decoder.exceededLimit() != '\0') {
        std::fprintf(stderr, "%s\n", decoder.exceededLimit());
    }
}

/// The name for a message; "(null)" for a null pointer.
const char* shown(const char* filename)
{
    return filename != nullptr ? filename : "(null)";
}

} // namespace

ImageJPEG::~ImageJPEG()
{
    delete[] buffer;
}

int ImageJPEG::read(const char* filename)
{
    const Files::Handle file = Files::openRegular(filename);
    if (file == nullptr) {
        std::printf("can't open %s\n", shown(filename));
        return 0;
    }
    const DecoderOptions options = {.memory = static_cast<long>(ImageFile::MAX_BYTES)};
    const auto decoder = newImageDecoder(IMAGE_JPEG, options);
    if (decoder == nullptr) {
        return 0;
    }
    if (!decoder->readHeader(file.get()) || !decoder->start()) {
        sayLimit(*decoder);
        return 0;
    }

    // From here on the sizes are the new file's, or 0 while there is no buffer for them.
    const ImageFrame& frame = decoder->frame();
    freeBuffer();
    w = h = c = 0;
    buffer = ImageFile::allocate(IMAGE_JPEG, frame.width, frame.height, frame.channels);
    if (buffer == nullptr) {
        std::fprintf(stderr, "%zu x %zu pixels are too many\n", frame.width, frame.height);
        return 0;
    }
    w = static_cast<int>(frame.width);
    h = static_cast<int>(frame.height);
    c = static_cast<int>(frame.channels);
    if (!decoder->readRows(buffer)) {
        sayLimit(*decoder);
        return 0;
    }
    delete[] sourceFile;
    sourceFile = ImageFile::copyName(filename);
    return sourceFile != nullptr ? 1 : 0;
}

int ImageJPEG::write(const char* filename, int quality)
{
    if (buffer == nullptr) {
        return 0;
    }
    Files::Handle file = Files::create(filename);
    if (file == nullptr) {
        std::fprintf(stderr, "can't open %s\n", shown(filename));
        return 0;
    }
    Compressor compressor;
    if (!encode(compressor, file.get(), *this, quality)) {
        return 0;
    }
    return std::fclose(file.release()) == 0 ? 1 : 0;
}

void ImageJPEG::freeBuffer()
{
    delete[] buffer;
    buffer = nullptr;
}
