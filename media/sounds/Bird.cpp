#include "Bird.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace media {

namespace {

/// A note of the bird: a whistle that slides from one pitch to another.
struct Chirp {
    double start; ///< seconds
    double duration;
    double from; ///< Hz
    double to;   ///< Hz
    double level;
};

void whistle(Sound& sound, const Chirp& chirp, float pan)
{
    const auto first = static_cast<std::size_t>(chirp.start * SAMPLE_RATE);
    const auto count = static_cast<std::size_t>(chirp.duration * SAMPLE_RATE);
    double phase = 0;
    for (std::size_t n = 0; n < count && first + n < sound.size(); ++n) {
        const double t = static_cast<double>(n) / static_cast<double>(count);
        phase += chirp.from * std::pow(chirp.to / chirp.from, t) / SAMPLE_RATE;
        const double x = 2 * std::numbers::pi * phase;
        // A flute's tone: hardly any overtones, and a soft onset.
        const double tone = std::sin(x) + 0.16 * std::sin(2 * x + 0.4) + 0.05 * std::sin(3 * x);
        const double envelope = std::sin(std::numbers::pi * std::pow(t, 0.7));
        const auto v = static_cast<float>(chirp.level * envelope * envelope * tone);
        sound.left[first + n] += v * std::sqrt(1 - pan);
        sound.right[first + n] += v * std::sqrt(pan);
    }
}

} // namespace

void warble(Sound& sound, double start, float pan, float level, Random& random)
{
    // The scale of the song, two octaves up and without its half steps.
    static constexpr std::array<double, 7> SCALE = {1174.7, 1396.9, 1568.0, 1760.0,
                                                    2093.0, 2349.3, 2793.8};
    double at = start;
    int step = 2 + random.below(2);
    const int chirps = 3 + random.below(2);
    for (int i = 0; i < chirps; ++i) {
        const double pitch = SCALE[static_cast<std::size_t>(step)];
        const double slide = random.below(2) == 0 ? 1.18 : 0.86;
        const double duration = random.between(0.07f, 0.13f);
        const double loud = level * random.between(0.6f, 1.0f);
        whistle(sound, {at, duration, pitch, pitch * slide, loud}, pan);
        at += duration * random.between(0.95f, 1.2f);
        const int down = random.below(4);
        const int up = random.below(4);
        step = std::clamp(step + up - down, 0, 5);
    }
    const auto lower = static_cast<std::size_t>(step);
    const double low = SCALE[lower];
    const double high = SCALE[lower + 1];
    const int beats = 5 + random.below(4);
    for (int i = 0; i < beats; ++i) {
        const double fade = 1 - 0.7 * i / beats;
        const double pitch = i % 2 == 0 ? low : high;
        whistle(sound, {at, 0.062, pitch, pitch * 1.04, level * 0.8 * fade}, pan);
        at += 0.055;
    }
}

} // namespace media
