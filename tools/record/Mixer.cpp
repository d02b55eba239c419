#include "Mixer.h"

#include "OggSound.h"

#include <algorithm>
#include <cmath>

namespace record {

namespace {

constexpr double VOICE_GAIN = 1.0; // the program asks for 1.5, OpenAL's limit is 1
constexpr double BUBBLES_GAIN = 0.2;
constexpr double MONO_GAIN = 0.6;

/// One sample of a track; a mono track sounds on both sides.
double sampleAt(const Track& track, std::int64_t frame, int channel)
{
    if (track.channels == 1) {
        return MONO_GAIN * track.samples[static_cast<std::size_t>(frame)];
    }
    return track.samples[static_cast<std::size_t>(frame * 2 + channel)];
}

std::int16_t clamped(double value)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(value, -32768.0, 32767.0)));
}

} // namespace

Mixer::Mixer(Track voice, Track bubbles) : first(std::move(voice)), loop(std::move(bubbles))
{
}

std::vector<std::int16_t> Mixer::mix(std::int64_t from, std::int64_t count) const
{
    std::vector<std::int16_t> mixed;
    mixed.reserve(static_cast<std::size_t>(count) * 2);
    for (std::int64_t frame = from; frame < from + count; ++frame) {
        for (int channel = 0; channel < 2; ++channel) {
            mixed.push_back(clamped(VOICE_GAIN * voiceAt(frame, channel) +
                                    BUBBLES_GAIN * bubblesAt(frame, channel)));
        }
    }
    return mixed;
}

double Mixer::voiceAt(std::int64_t frame, int channel) const
{
    return frame < first.frames() ? sampleAt(first, frame, channel) : 0;
}

double Mixer::bubblesAt(std::int64_t frame, int channel) const
{
    const std::int64_t length = loop.frames();
    if (length == 0) {
        return 0;
    }
    // Whole seconds separately: the product of hours and two rates would overflow.
    const std::int64_t position = frame % first.rate * loop.rate;
    const std::int64_t whole = frame / first.rate * loop.rate + position / first.rate;
    const double part = static_cast<double>(position % first.rate) / first.rate;
    const double here = sampleAt(loop, whole % length, channel);
    const double after = sampleAt(loop, (whole + 1) % length, channel);
    return here + part * (after - here);
}

Track loadTrack(const char* path, std::int64_t& samples)
{
    OggSound sound;
    std::vector<char> bytes;
    int format = 0;
    unsigned rate = 0;
    sound.loadOGG(path, bytes, format, rate);
    samples = sound.numSamples;

    Track track;
    track.channels = format == AL_FORMAT_MONO16 ? 1 : 2;
    track.rate = static_cast<int>(rate);
    // Of three channels and more OpenAL plays whole frames of two.
    const auto frameBytes = static_cast<std::size_t>(track.channels) * 2;
    const std::size_t end = bytes.size() / frameBytes * frameBytes;
    track.samples.reserve(end / 2);
    for (std::size_t at = 0; at < end; at += 2) {
        const unsigned low = static_cast<unsigned char>(bytes[at]);
        const unsigned high = static_cast<unsigned char>(bytes[at + 1]);
        track.samples.push_back(static_cast<std::int16_t>(high << 8U | low));
    }
    return track;
}

} // namespace record
