#include "EncodePicture.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <memory>
#include <png.h>
#include <stdexcept>

namespace media {

namespace {

/// libjpeg's error manager with a way back: its own error exit would end the program.
struct JpegErrors {
    jpeg_error_mgr pub;
    std::jmp_buf back;
};

[[noreturn]] void jpegFailed(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->back, 1);
}

/// Compresses into an open stream. Holds nothing with a destructor, so that libjpeg may jump out of
/// it. \return whether libjpeg did its work
bool compressJpeg(const Bitmap& image, int quality, std::FILE* stream)
{
    jpeg_compress_struct info;
    JpegErrors errors;
    info.err = jpeg_std_error(&errors.pub);
    errors.pub.error_exit = jpegFailed;
    if (setjmp(errors.back) != 0) {
        jpeg_destroy_compress(&info);
        return false;
    }
    jpeg_create_compress(&info);
    jpeg_stdio_dest(&info, stream);
    info.image_width = static_cast<JDIMENSION>(image.width);
    info.image_height = static_cast<JDIMENSION>(image.height);
    info.input_components = image.channels;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    for (int i = 0; i < info.num_components; ++i) {
        info.comp_info[i].h_samp_factor = 1;
        info.comp_info[i].v_samp_factor = 1;
    }
    info.optimize_coding = TRUE;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        // libjpeg only reads the row, but its type does not say so.
        auto* row = const_cast<JSAMPLE*>(
            &image.bytes[static_cast<std::size_t>(info.next_scanline) * info.image_width * 3]);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    return true;
}

} // namespace

std::string encodeJpeg(const Bitmap& image, int quality)
{
    char* block = nullptr;
    std::size_t size = 0;
    std::FILE* stream = open_memstream(&block, &size);
    if (stream == nullptr) {
        throw std::runtime_error("no memory for the picture");
    }
    const bool done = compressJpeg(image, quality, stream);
    std::fclose(stream);
    const std::unique_ptr<char, decltype(&std::free)> owner(block, std::free);
    if (!done) {
        throw std::runtime_error("libjpeg cannot write the picture");
    }
    return {block, size};
}

std::string encodePng(const Bitmap& image)
{
    png_image info{};
    info.version = PNG_IMAGE_VERSION;
    info.width = static_cast<png_uint_32>(image.width);
    info.height = static_cast<png_uint_32>(image.height);
    info.format = image.channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(info);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&info, bytes.data(), &size, 0, image.bytes.data(), 0, nullptr) ==
        0) {
        throw std::runtime_error(info.message);
    }
    bytes.resize(size);
    return bytes;
}

} // namespace media
