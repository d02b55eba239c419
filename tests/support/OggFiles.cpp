#include "OggFiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <vorbis/codec.h>
#include <vorbis/vorbisenc.h>

namespace {

void check(bool good, const char* what)
{
    if (!good) {
        throw std::runtime_error(what);
    }
}

void append(std::string& bytes, const ogg_page& page)
{
    bytes.append(reinterpret_cast<const char*>(page.header),
                 static_cast<std::size_t>(page.header_len));
    bytes.append(reinterpret_cast<const char*>(page.body), static_cast<std::size_t>(page.body_len));
}

void flush(std::string& bytes, ogg_stream_state& stream)
{
    ogg_page page;
    while (ogg_stream_flush(&stream, &page) != 0) {
        append(bytes, page);
    }
}

/// Fills the encoder's next block of samples, which start with number \p first.
void synthesise(vorbis_dsp_state& dsp, const OggFiles::Tone& tone, int first, int count)
{
    float** const block = vorbis_analysis_buffer(&dsp, count);
    const double step = 2 * std::numbers::pi * tone.pitch / static_cast<double>(tone.rate);
    for (int c = 0; c < tone.channels; ++c) {
        for (int i = 0; i < count; ++i) {
            const double phase = step * (c + 1) * (first + i);
            block[c][i] = tone.loudness * static_cast<float>(std::sin(phase));
        }
    }
    vorbis_analysis_wrote(&dsp, count);
}

/// Moves what the encoder has finished into the stream and the file.
void drain(std::string& bytes, vorbis_dsp_state& dsp, vorbis_block& block, ogg_stream_state& stream)
{
    while (vorbis_analysis_blockout(&dsp, &block) == 1) {
        vorbis_analysis(&block, nullptr);
        vorbis_bitrate_addblock(&block);
        ogg_packet packet;
        while (vorbis_bitrate_flushpacket(&dsp, &packet) != 0) {
            ogg_stream_packetin(&stream, &packet);
            ogg_page page;
            while (ogg_stream_pageout(&stream, &page) != 0) {
                append(bytes, page);
            }
        }
    }
}

/// The packets of an unchained stream, in order.
class PacketReader {
public:
    explicit PacketReader(const std::string& bytes)
    {
        ogg_sync_init(&sync);
        char* const buffer = ogg_sync_buffer(&sync, static_cast<long>(bytes.size()));
        std::memcpy(buffer, bytes.data(), bytes.size());
        ogg_sync_wrote(&sync, static_cast<long>(bytes.size()));
        check(ogg_sync_pageout(&sync, &page) == 1, "no Ogg page");
        ogg_stream_init(&stream, ogg_page_serialno(&page));
        ogg_stream_pagein(&stream, &page);
    }
    PacketReader(const PacketReader&) = delete;
    PacketReader& operator=(const PacketReader&) = delete;
    ~PacketReader()
    {
        ogg_stream_clear(&stream);
        ogg_sync_clear(&sync);
    }

    bool next(ogg_packet& packet)
    {
        while (ogg_stream_packetout(&stream, &packet) != 1) {
            if (ogg_sync_pageout(&sync, &page) != 1) {
                return false;
            }
            ogg_stream_pagein(&stream, &page);
        }
        return true;
    }

private:
    ogg_sync_state sync;
    ogg_stream_state stream;
    ogg_page page;
};

std::int16_t rounded(float sample)
{
    return static_cast<std::int16_t>(
        std::clamp(std::lrint(static_cast<double>(sample * 32768.0f)), -32768L, 32767L));
}

} // namespace

namespace OggFiles {

std::string vorbis(const Tone& tone)
{
    vorbis_info info;
    vorbis_comment comment;
    vorbis_dsp_state dsp;
    vorbis_block block;
    ogg_stream_state stream;
    vorbis_info_init(&info);
    check(vorbis_encode_init_vbr(&info, tone.channels, tone.rate, 0.3f) == 0, "no such encoding");
    vorbis_comment_init(&comment);
    vorbis_analysis_init(&dsp, &info);
    vorbis_block_init(&dsp, &block);
    ogg_stream_init(&stream, tone.serial);

    std::string bytes;
    std::array<ogg_packet, 3> header;
    vorbis_analysis_headerout(&dsp, &comment, &header[0], &header[1], &header[2]);
    for (ogg_packet& packet : header) {
        ogg_stream_packetin(&stream, &packet);
        flush(bytes, stream);
    }
    constexpr int BLOCK = 4096;
    for (int first = 0; first < tone.samples; first += BLOCK) {
        synthesise(dsp, tone, first, std::min(BLOCK, tone.samples - first));
        drain(bytes, dsp, block, stream);
    }
    vorbis_analysis_wrote(&dsp, 0);
    drain(bytes, dsp, block, stream);
    flush(bytes, stream);

    ogg_stream_clear(&stream);
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&dsp);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
    return bytes;
}

std::string unknownCodec()
{
    ogg_stream_state stream;
    ogg_stream_init(&stream, 7);
    std::string bytes;
    std::string payload = "\x01nobody's codec, but thirty bytes";
    for (int i = 0; i < 4; ++i) {
        ogg_packet packet{};
        packet.packet = reinterpret_cast<unsigned char*>(payload.data());
        packet.bytes = static_cast<long>(payload.size());
        packet.b_o_s = i == 0;
        packet.e_o_s = i == 3;
        packet.granulepos = i;
        packet.packetno = i;
        ogg_stream_packetin(&stream, &packet);
        flush(bytes, stream);
    }
    ogg_stream_clear(&stream);
    return bytes;
}

std::string claiming(std::int64_t samples, std::string bytes)
{
    // RFC 3533, section 6: the position is 8 bytes, little-endian, from byte 6 of the page on.
    constexpr std::size_t POSITION = 6;
    constexpr std::size_t SEGMENTS = 26;
    const std::size_t last = bytes.rfind("OggS");
    for (std::size_t i = 0; i < 8; ++i) {
        bytes[last + POSITION + i] = static_cast<char>(samples >> (8 * i));
    }
    ogg_page page{};
    page.header = reinterpret_cast<unsigned char*>(&bytes[last]);
    page.header_len = static_cast<long>(SEGMENTS + 1) + page.header[SEGMENTS];
    page.body = page.header + page.header_len;
    page.body_len = static_cast<long>(bytes.size() - last) - page.header_len;
    ogg_page_checksum_set(&page);
    return bytes;
}

std::vector<std::int16_t> decode(const std::string& bytes)
{
    PacketReader reader(bytes);
    vorbis_info info;
    vorbis_comment comment;
    vorbis_info_init(&info);
    vorbis_comment_init(&comment);
    ogg_packet packet;
    for (int i = 0; i < 3; ++i) {
        check(reader.next(packet) && vorbis_synthesis_headerin(&info, &comment, &packet) == 0,
              "no Vorbis header");
    }
    vorbis_dsp_state dsp;
    vorbis_block block;
    vorbis_synthesis_init(&dsp, &info);
    vorbis_block_init(&dsp, &block);

    std::vector<std::int16_t> samples;
    while (reader.next(packet)) {
        if (vorbis_synthesis(&block, &packet) == 0) {
            vorbis_synthesis_blockin(&dsp, &block);
        }
        float** pcm = nullptr;
        int count = 0;
        while ((count = vorbis_synthesis_pcmout(&dsp, &pcm)) > 0) {
            for (int i = 0; i < count; ++i) {
                for (int c = 0; c < info.channels; ++c) {
                    samples.push_back(rounded(pcm[c][i]));
                }
            }
            vorbis_synthesis_read(&dsp, count);
        }
    }
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&dsp);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
    return samples;
}

} // namespace OggFiles
