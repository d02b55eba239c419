#pragma once

#include <cstddef>
#include <span>
#include <vorbis/vorbisfile.h>

/// An Ogg Vorbis file, decoded block by block and without OpenAL. It is the one reader of sounds:
/// OggSound plays what it decodes, and kelpix-media --check asks it which files can be played.
///
/// \code
/// OggFile file("voice.ogg");
/// for (auto block = file.read(); !block.empty(); block = file.read()) {
///     track.insert(track.end(), block.begin(), block.end());
/// }
/// const bool whole = file.state() == OggFile::State::whole;
/// \endcode
class OggFile {
public:
    enum class State {
        noFile,   ///< there is no file, or it cannot be opened, or it is a pipe or a device
        noVorbis, ///< it is no Ogg Vorbis file, or a folder
        open,     ///< it is being decoded
        whole,    ///< it was decoded to its end
        damaged   ///< it is damaged, or longer than MAX_BYTES
    };

    /// The most bytes of a decoded track: the largest OpenAL buffer. A file of a few kilobytes can
    /// decode to far more.
    static constexpr std::size_t MAX_BYTES = 0x7fffffff;

    /// \param path  may be null, which is no file
    explicit OggFile(const char* path);
    OggFile(const OggFile&) = delete;
    OggFile& operator=(const OggFile&) = delete;
    ~OggFile();

    State state() const { return state_; }

    // What follows counts from State::open on. Of a chain of tracks, channels and rate are those of
    // the first one.

    int channels() const { return channels_; }
    long rate() const { return rate_; }              ///< samples per second
    ogg_int64_t samples() const { return samples_; } ///< per channel, of all tracks, as claimed
    int links() const { return links_; }             ///< tracks of the chain; 1 = no chain
    bool isUniform() const { return isUniform_; }    ///< all tracks have the same channels and rate
    int blockChannels() const { return blockChannels_; } ///< of the latest block

    /// The bytes to reserve for the whole track: what the file claims, but at most 64 times its
    /// own size.
    std::size_t expectedBytes() const;

    /// Decodes the next samples: 16 bits signed, the low byte first, channels interleaved.
    /// \return whole frames, valid until the next call; empty when the state is no longer open
    std::span<const char> read();

private:
    /// Goes to the first sample. \return false when the file is damaged
    bool rewind();

    State state_ = State::noFile;
    OggVorbis_File file_{};
    std::size_t fileBytes_ = 0;
    int channels_ = 0;
    long rate_ = 0;
    ogg_int64_t samples_ = 0;
    int links_ = 0;
    bool isUniform_ = true;
    int blockChannels_ = 0;
    bool isOpen_ = false;     ///< file_ has to be cleared
    bool hasStarted_ = false; ///< file_ stands at the first sample or behind
    std::size_t bytes_ = 0;   ///< decoded so far
    char block_[32768];
};
