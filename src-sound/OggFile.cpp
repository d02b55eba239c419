#include "OggFile.h"

#include "OpenFile.h"

#include <algorithm>
#include <cstdint>
#include <sys/stat.h>

namespace {

/// \return 0 when it cannot be told
std::size_t sizeOf(std::FILE* file)
{
    struct stat status = {};
    return fstat(fileno(file), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

/// The bytes of one sample of all channels.
std::uintmax_t frameBytes(int channels)
{
    return 2 * static_cast<std::uintmax_t>(std::max(channels, 1));
}

} // namespace

OggFile::OggFile(const char* path)
{
    Files::Handle handle = Files::openRegularOrFolder(path);
    if (handle == nullptr) {
        return;
    }
    if (ov_open(handle.get(), &file_, nullptr, 0) != 0) {
        state_ = State::noVorbis;
        return;
    }
    // The decoder owns the file from here on: ov_clear closes it.
    fileBytes_ = sizeOf(handle.release());
    isOpen_ = true;
    state_ = State::open;

    const vorbis_info* const first = ov_info(&file_, -1);
    channels_ = first == nullptr ? 0 : first->channels;
    rate_ = first == nullptr ? 0 : first->rate;
    samples_ = std::max<ogg_int64_t>(ov_pcm_total(&file_, -1), 0);
    links_ = static_cast<int>(ov_streams(&file_));
    for (int link = 1; link < links_; ++link) {
        const vorbis_info* const info = ov_info(&file_, link);
        isUniform_ = isUniform_ && info->channels == channels_ && info->rate == rate_;
    }
}

OggFile::~OggFile()
{
    if (isOpen_) {
        ov_clear(&file_);
    }
}

std::size_t OggFile::expectedBytes() const
{
    if (channels_ <= 0) {
        return 0;
    }
    const auto frames = static_cast<std::uintmax_t>(samples_);
    const std::uintmax_t believed = std::min<std::uintmax_t>(fileBytes_, 1 << 25) * 64;
    const std::uintmax_t frame = frameBytes(channels_);
    return static_cast<std::size_t>(std::min(frames, believed / frame) * frame);
}

bool OggFile::rewind()
{
    // After ov_open the decoder already stands there, but for a chain whose first track has all its
    // audio in one Ogg page: that track would be left out.
    return links_ < 2 || ov_pcm_tell(&file_) == 0 || ov_pcm_seek(&file_, 0) == 0;
}

std::span<const char> OggFile::read()
{
    constexpr int LITTLE_ENDIAN_ORDER = 0;
    constexpr int WORD_BYTES = 2;
    constexpr int SIGNED = 1;
    if (state_ != State::open) {
        return {};
    }
    if (!hasStarted_) {
        hasStarted_ = true;
        const bool fits =
            static_cast<std::uintmax_t>(samples_) <= MAX_BYTES / frameBytes(channels_);
        if (!fits || !rewind()) {
            state_ = State::damaged;
            return {};
        }
    }
    int link = 0;
    const long count =
        ov_read(&file_, block_, sizeof block_, LITTLE_ENDIAN_ORDER, WORD_BYTES, SIGNED, &link);
    if (count <= 0) {
        state_ = count == 0 ? State::whole : State::damaged;
        return {};
    }
    bytes_ += static_cast<std::size_t>(count);
    if (bytes_ > MAX_BYTES) {
        state_ = State::damaged;
        return {};
    }
    const vorbis_info* const info = ov_info(&file_, link);
    blockChannels_ = info == nullptr ? channels_ : info->channels;
    return {block_, static_cast<std::size_t>(count)};
}
