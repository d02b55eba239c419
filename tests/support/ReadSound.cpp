#include "ReadSound.h"

#include <algorithm>
#include <cmath>
#include <vorbis/vorbisfile.h>

Track readOgg(const std::string& path)
{
    Track track;
    OggVorbis_File file;
    if (ov_fopen(path.c_str(), &file) != 0) {
        return track;
    }
    track.channels = ov_info(&file, -1)->channels;
    track.rate = ov_info(&file, -1)->rate;
    track.serial = ov_serialnumber(&file, -1);
    track.samples = ov_pcm_total(&file, -1);
    track.pcm.resize(static_cast<std::size_t>(track.channels));
    float** block = nullptr;
    int bitstream = 0;
    for (long n = 1; n > 0;) {
        n = ov_read_float(&file, &block, 4096, &bitstream);
        for (std::size_t c = 0; n > 0 && c < track.pcm.size(); ++c) {
            track.pcm[c].insert(track.pcm[c].end(), block[c], block[c] + n);
        }
    }
    ov_clear(&file);
    return track;
}

double level(const Track& track, double from, double to)
{
    const auto rate = static_cast<double>(track.rate);
    double sum = 0;
    std::size_t count = 0;
    for (const std::vector<float>& channel : track.pcm) {
        const auto end = std::min(channel.size(), static_cast<std::size_t>(to * rate));
        for (auto i = static_cast<std::size_t>(from * rate); i < end; ++i) {
            sum += static_cast<double>(channel[i]) * static_cast<double>(channel[i]);
            ++count;
        }
    }
    return count == 0 ? 0 : std::sqrt(sum / static_cast<double>(count));
}

double decibels(double amplitude)
{
    return 20 * std::log10(std::max(amplitude, 1e-10));
}
