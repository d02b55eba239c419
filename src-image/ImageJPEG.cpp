#include "ImageJPEG.h"

#include "ImageFile.h"
#include "OpenFile.h"

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>

// jpeglib.h needs size_t and FILE declared before it.
#include <jpeglib.h>

#include <jerror.h>

namespace {

/// The library's error manager with the place to go when it gives up.
struct my_error_mgr {
    jpeg_error_mgr pub;
    std::jmp_buf setjmp_buffer;
};

/// Errors of our own, which go the way of the library's.
enum { TOO_MANY_SCANS = 1000, PICTURE_TOO_LARGE };
constexpr const char* OUR_MESSAGES[] = {"More than %d scans", "%u x %u pixels are too many"};

/// The library's own scripts for progressive files have 10 scans, of four components (CMYK) 18. A
/// few bytes make one more scan, and each costs a pass over the whole picture.
constexpr int MAX_SCANS = 100;

/// The most scans of a large picture are those that pass over so many pixels, but no fewer than
/// MIN_SCANS.
constexpr std::int64_t MAX_SCANNED = std::int64_t{1} << 32;
constexpr std::int64_t MIN_SCANS = 18;

/// Uploads of JPEG textures read this many bytes per pixel.
constexpr std::size_t UPLOADED_COMPONENTS = 3;

[[noreturn]] void my_error_exit(j_common_ptr jpeg)
{
    jpeg->err->output_message(jpeg);
    // pub is the first member, so the manager that the library knows is ours.
    std::longjmp(reinterpret_cast<my_error_mgr*>(jpeg->err)->setjmp_buffer, 1);
}

jpeg_error_mgr* install(my_error_mgr& errors)
{
    jpeg_std_error(&errors.pub);
    errors.pub.error_exit = my_error_exit;
    errors.pub.addon_message_table = OUR_MESSAGES;
    errors.pub.first_addon_message = TOO_MANY_SCANS;
    errors.pub.last_addon_message = PICTURE_TOO_LARGE;
    return &errors.pub;
}

void stopAfterManyScans(j_common_ptr jpeg)
{
    const auto* decompressor = reinterpret_cast<j_decompress_ptr>(jpeg);
    const auto pixels = std::int64_t{decompressor->image_width} * decompressor->image_height;
    const auto most = std::clamp(MAX_SCANNED / pixels, MIN_SCANS, std::int64_t{MAX_SCANS});
    if (decompressor->input_scan_number > most) {
        ERREXIT1(jpeg, TOO_MANY_SCANS, static_cast<int>(most));
    }
}

struct Decompressor {
    my_error_mgr errors = {};
    jpeg_progress_mgr progress = {};
    jpeg_decompress_struct jpeg = {};
    std::size_t unread = 0; ///< bytes at the start of the pixel buffer that no row has reached

    Decompressor()
    {
        jpeg.err = install(errors);
        progress.progress_monitor = stopAfterManyScans;
    }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;
    ~Decompressor() { jpeg_destroy_decompress(&jpeg); }
};

struct Compressor {
    my_error_mgr errors = {};
    jpeg_compress_struct jpeg = {};

    Compressor() { jpeg.err = install(errors); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    ~Compressor() { jpeg_destroy_compress(&jpeg); }
};

// The two functions below are where library errors land. Everything with a destructor lives in
// their callers, so a jump skips none.

bool decode(Decompressor& decompressor, std::FILE* file, ImageJPEG& image)
{
    if (setjmp(decompressor.errors.setjmp_buffer) != 0) {
        return false;
    }
    jpeg_decompress_struct& jpeg = decompressor.jpeg;
    jpeg_create_decompress(&jpeg);
    jpeg.progress = &decompressor.progress;
    jpeg.mem->max_memory_to_use = static_cast<long>(ImageFile::MAX_BYTES);
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);

    const std::size_t width = jpeg.output_width;
    const std::size_t height = jpeg.output_height;
    const auto components = static_cast<std::size_t>(jpeg.output_components);
    image.freeBuffer();
    image.w = image.h = image.c = 0;
    image.buffer = ImageFile::allocate(width, height, components, UPLOADED_COMPONENTS);
    if (image.buffer == nullptr) {
        ERREXIT2(&jpeg, PICTURE_TOO_LARGE, static_cast<int>(width), static_cast<int>(height));
    }
    image.w = static_cast<int>(width);
    image.h = static_cast<int>(height);
    image.c = static_cast<int>(components);

    // Rows go where they belong at once, the file's first row to the end of the buffer.
    const std::size_t rowStride = width * components;
    decompressor.unread = rowStride * height;
    while (jpeg.output_scanline < height) {
        const std::size_t offset = decompressor.unread - rowStride;
        JSAMPROW row = image.buffer + offset;
        jpeg_read_scanlines(&jpeg, &row, 1);
        decompressor.unread = offset;
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

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

/// A name for a message: text that a caller left out reads "(null)".
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
    Decompressor decompressor;
    if (!decode(decompressor, file.get(), *this)) {
        std::fill_n(buffer, decompressor.unread, static_cast<unsigned char>(0));
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
