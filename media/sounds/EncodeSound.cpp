#include "EncodeSound.h"

#include <algorithm>
#include <stdexcept>
#include <vorbis/vorbisenc.h>

namespace media {

namespace {

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
