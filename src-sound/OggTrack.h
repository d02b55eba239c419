#pragma once

#include "OggFile.h"

#include <ogg/ogg.h>
#include <vector>

/// An Ogg Vorbis file, decoded whole and without OpenAL: what OggSound plays.
///
/// Decoding touches nothing that other threads could see, so that tracks can be decoded at once,
/// and beside other work:
///
/// \code
/// std::future<OggTrack> track = std::async([] { return OggTrack::decode("voice.ogg"); });
/// // ...
/// sound.load(track.get());
/// \endcode
struct OggTrack {
    const char* path = "";                         ///< borrows: as given to decode
    OggFile::State state = OggFile::State::noFile; ///< whole, or what is wrong with the file
    int channels = 0;
    long rate = 0;           ///< samples per second
    ogg_int64_t samples = 0; ///< per channel, of all links of a chain, as the file claims
    std::vector<char> data;  ///< signed 16-bit little-endian, interleaved; none if it is not whole

    /// Decodes the file at \p path. Prints nothing, whatever is wrong with it. A track that memory
    /// cannot hold counts as damaged.
    /// \param path    borrows: must outlive the track; null is no file
    /// \param before  what the track is appended to
    static OggTrack decode(const char* path, std::vector<char> before = {});
};
