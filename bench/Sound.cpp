// Loading a sound: 60 seconds of stereo.

#include "Bare.h"
#include "Child.h"
#include "Data.h"
#include "Job.h"

#include "EncodeSound.h"
#include "OggSound.h"
#include "Random.h"

#include <cmath>
#include <vector>

namespace {

/// Tones that come and go over a little noise.
std::string newTrack()
{
    constexpr std::size_t SECONDS = 60;
    media::Sound sound(SECONDS * media::SAMPLE_RATE);
    media::Random random(1);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double t = static_cast<double>(i) / media::SAMPLE_RATE;
        const double swell = std::sin(0.7 * t) * std::sin(0.7 * t);
        const double left = swell * std::sin(1400 * t) + std::sin(2200 * t + std::sin(5 * t));
        const double right = swell * std::sin(900 * t) + std::sin(3100 * t + std::sin(3 * t));
        sound.left[i] = static_cast<float>(0.3 * left) + random.between(-0.1f, 0.1f);
        sound.right[i] = static_cast<float>(0.3 * right) + random.between(-0.1f, 0.1f);
    }
    return bench::writeData("track.ogg", media::encodeVorbis(sound, 0.4f, 1));
}

std::uint64_t hashOf(const std::vector<char>& track)
{
    return bench::hashOf(track.data(), track.size());
}

/// Loads in a child process: OpenAL keeps the tracks, and the allocator freed memory. Takes the CPU
/// time of the calling thread: OpenAL plays in another one.
template<typename Load>
double cost(Load load)
{
    return bench::inChild([load] {
        OggSound::initAL(nullptr, nullptr);
        const double start = bench::threadClock();
        load();
        return bench::threadClock() - start;
    });
}

bench::Job loading()
{
    const std::string path = newTrack();
    const auto load = [path] {
        OggSound sound;
        sound.load(path.c_str());
        return hashOf(sound.bufferData);
    };
    return {"Ogg Vorbis, 60 s of stereo",
            "track",
            1,
            {{.name = "kelpix",
              .result = load,
              .measure =
                  [path] {
                      OggSound sound;
                      return cost([&] { sound.load(path.c_str()); });
                  }},
             {.name = "lower bound",
              .result = [path] { return hashOf(bench::decodeOgg(path)); },
              .measure =
                  [path] {
                      std::vector<char> track;
                      return cost([&] { track = bench::decodeOgg(path); });
                  }}}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {loading});
}
