#include "Encode.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <vorbis/vorbisenc.h>

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

/// The state of a Vorbis encoder, cleared in the order that the library asks for.
class VorbisEncoder {
public:
    VorbisEncoder(float quality, int serial)
    {
        vorbis_info_init(&info);
        if (vorbis_encode_init_vbr(&info, 2, SAMPLE_RATE, quality) != 0) {
            vorbis_info_clear(&info);
            throw std::runtime_error("the Vorbis encoder refuses the quality");
        }
        vorbis_comment_init(&comment);
        vorbis_analysis_init(&dsp, &info);
        vorbis_block_init(&dsp, &block);
        ogg_stream_init(&stream, serial);
        ogg_packet header[3];
        vorbis_analysis_headerout(&dsp, &comment, &header[0], &header[1], &header[2]);
        for (ogg_packet& packet : header) {
            ogg_stream_packetin(&stream, &packet);
        }
        ogg_page page;
        while (ogg_stream_flush(&stream, &page) != 0) {
            append(page);
        }
    }

    ~VorbisEncoder()
    {
        ogg_stream_clear(&stream);
        vorbis_block_clear(&block);
        vorbis_dsp_clear(&dsp);
        vorbis_comment_clear(&comment);
        vorbis_info_clear(&info);
    }

    VorbisEncoder(const VorbisEncoder&) = delete;
    VorbisEncoder& operator=(const VorbisEncoder&) = delete;

    /// Takes the next samples; none of them ends the stream.
    void write(const float* left, const float* right, std::size_t count)
    {
        if (count > 0) {
            float** buffer = vorbis_analysis_buffer(&dsp, static_cast<int>(count));
            std::copy(left, left + count, buffer[0]);
            std::copy(right, right + count, buffer[1]);
        }
        vorbis_analysis_wrote(&dsp, static_cast<int>(count));
        while (vorbis_analysis_blockout(&dsp, &block) == 1) {
            vorbis_analysis(&block, nullptr);
            vorbis_bitrate_addblock(&block);
            ogg_packet packet;
            while (vorbis_bitrate_flushpacket(&dsp, &packet) != 0) {
                ogg_stream_packetin(&stream, &packet);
                ogg_page page;
                while (ogg_stream_pageout(&stream, &page) != 0) {
                    append(page);
                }
            }
        }
    }

    std::string bytes;

private:
    void append(const ogg_page& page)
    {
        bytes.append(reinterpret_cast<const char*>(page.header),
                     static_cast<std::size_t>(page.header_len));
        bytes.append(reinterpret_cast<const char*>(page.body),
                     static_cast<std::size_t>(page.body_len));
    }

    vorbis_info info;
    vorbis_comment comment;
    vorbis_dsp_state dsp;
    vorbis_block block;
    ogg_stream_state stream;
};

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

std::string encodeVorbis(const Sound& sound, float quality, int serial)
{
    constexpr std::size_t CHUNK = 4096;
    VorbisEncoder encoder(quality, serial);
    for (std::size_t at = 0; at < sound.size(); at += CHUNK) {
        const std::size_t count = std::min(CHUNK, sound.size() - at);
        encoder.write(&sound.left[at], &sound.right[at], count);
    }
    encoder.write(nullptr, nullptr, 0);
    return encoder.bytes;
}

} // namespace media
