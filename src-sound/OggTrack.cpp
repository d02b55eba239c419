#include "OggTrack.h"

#include <new>
#include <utility>

OggTrack OggTrack::decode(const char* path, std::vector<char> before)
{
    OggTrack track;
    track.path = path == nullptr ? "" : path;
    track.data = std::move(before);
    OggFile file(track.path);
    track.state = file.state();
    if (track.state != OggFile::State::open) {
        return track;
    }
    track.channels = file.channels();
    track.rate = file.rate();
    track.samples = file.samples();
    try {
        track.data.reserve(track.data.size() + file.expectedBytes());
        for (auto block = file.read(); !block.empty(); block = file.read()) {
            track.data.insert(track.data.end(), block.begin(), block.end());
        }
        track.state = file.state();
    } catch (const std::bad_alloc&) {
        track.state = OggFile::State::damaged;
    }
    if (track.state != OggFile::State::whole) {
        track.data = std::vector<char>(); // its memory, too
    }
    return track;
}
