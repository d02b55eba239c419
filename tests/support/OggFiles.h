#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Ogg streams made at test time, as the bytes of a file. Bytes of several one after the other are
/// a chained file.
namespace OggFiles {

struct Tone {
    int channels = 1;
    long rate = 44100;    ///< samples per second
    int samples = 44100;  ///< per channel
    int serial = 1;       ///< serial number of the logical stream
    double pitch = 440;   ///< Hz; channel c plays (c + 1) times as high
    float loudness = 0.5; ///< amplitude of each channel; above 1 it clips
};

/// An Ogg Vorbis stream of a sine per channel.
std::string vorbis(const Tone& tone);

/// A well-formed Ogg stream of a codec that nobody knows.
std::string unknownCodec();

/// The stream of several pages of audio in \p bytes, with an end that claims so many samples.
std::string claiming(std::int64_t samples, std::string bytes);

/// Decodes one unchained Ogg Vorbis stream by libvorbis alone, packet by packet.
/// \return interleaved samples, rounded to 16 bits and clipped
std::vector<std::int16_t> decode(const std::string& bytes);

} // namespace OggFiles
