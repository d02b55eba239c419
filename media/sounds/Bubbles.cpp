#include "Bubbles.h"

#include "EncodeSound.h"
#include "Random.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace media {

namespace {

constexpr float PEAK = 0.707946f; // -3 dBFS
constexpr int SECONDS = 18;
constexpr double PI2 = 2 * std::numbers::pi;

/// The loop as a ring buffer: what reaches beyond its end goes on at its start. Borrows the sound.
class Ring {
public:
    explicit Ring(Sound& on) : sound(on) {}

    void add(std::size_t at, float left, float right)
    {
        const std::size_t i = at % sound.size();
        sound.left[i] += left;
        sound.right[i] += right;
    }

private:
    Sound& sound;
};

/// A bubble of air that tears off rings like a small bell whose pitch rises as it nears the
/// surface (Minnaert 1933; van den Doel, "Physically based models for liquid sounds", 2005).
struct Drop {
    std::size_t start; ///< sample
    double pitch;      ///< Hz
    double rise;       ///< how fast the pitch grows, 1/s
    double decay;      ///< 1/s
    float level;
    float pan;
};

void ring(Ring& loop, const Drop& drop)
{
    const auto count = static_cast<std::size_t>(SAMPLE_RATE * 9 / drop.decay);
    const float left = std::sqrt(1 - drop.pan);
    const float right = std::sqrt(drop.pan);
    double phase = 0;
    for (std::size_t n = 0; n < count; ++n) {
        const double t = static_cast<double>(n) / SAMPLE_RATE;
        phase += drop.pitch * (1 + drop.rise * t) / SAMPLE_RATE;
        const double attack = 1 - std::exp(-t * 900);
        const double envelope = attack * std::exp(-t * drop.decay);
        const auto v = static_cast<float>(drop.level * envelope * std::sin(PI2 * phase));
        loop.add(drop.start + n, v * left, v * right);
    }
}

Drop makeDrop(double seconds, double pitch, float level, float pan, Random& random)
{
    // Large bubbles are low and ring longer.
    const double decay = 10 + pitch * 0.022 * random.between(0.8f, 1.3f);
    return {static_cast<std::size_t>(seconds * SAMPLE_RATE),
            pitch,
            decay * random.between(0.10f, 0.35f),
            decay,
            level,
            pan};
}

/// Pitches are spread evenly to the ear, 350 to 1800 Hz.
double randomPitch(Random& random)
{
    return 350 * std::pow(1800.0 / 350.0, random.unit());
}

/// Adds strings of bubbles that rise one after the other, and single ones in between.
void addDrops(Ring& loop, Random& random)
{
    for (int i = 0; i < 26; ++i) {
        double at = random.unit() * SECONDS;
        double pitch = randomPitch(random);
        const float pan = random.between(0.1f, 0.9f);
        const float level = random.between(0.35f, 1.0f);
        const int count = 3 + random.below(8);
        for (int k = 0; k < count; ++k) {
            ring(loop, makeDrop(at, pitch, level * random.between(0.4f, 1.0f), pan, random));
            at += random.between(0.035f, 0.16f);
            pitch = std::clamp(pitch * random.between(0.84f, 1.24f), 350.0, 1800.0);
        }
    }
    for (int i = 0; i < 90; ++i) {
        const double at = random.unit() * SECONDS;
        const double pitch = randomPitch(random);
        const float pan = random.between(0.05f, 0.95f);
        const float level = random.between(0.05f, 0.30f);
        ring(loop, makeDrop(at, pitch, level, pan, random));
    }
}

/// Adds the soft rush of water: noise through a low-pass whose cutoff rises and falls. The filter
/// runs around the loop twice and the second round is kept, so that the end leads into the start.
void addBed(Sound& sound, float level, Random& random)
{
    for (std::vector<float>* channel : {&sound.left, &sound.right}) {
        std::vector<float> noise(sound.size());
        for (float& v : noise) {
            v = random.between(-1, 1);
        }
        double first = 0;
        double second = 0;
        double slow = 0;
        const double phase = random.unit() * PI2;
        for (std::size_t n = 0; n < 2 * noise.size(); ++n) {
            const std::size_t i = n % noise.size();
            const double turn = PI2 * static_cast<double>(i) / static_cast<double>(noise.size());
            const double swell =
                0.5 + 0.3 * std::sin(3 * turn + phase) + 0.2 * std::sin(7 * turn + 2 * phase);
            const double edge = 0.018 + 0.030 * swell;
            first += edge * (noise[i] - first);
            second += edge * (first - second);
            slow += 0.004 * (second - slow);
            if (n >= noise.size()) {
                (*channel)[i] += static_cast<float>((second - slow) * level * (0.7 + 0.6 * swell));
            }
        }
    }
}

} // namespace

std::vector<File> makeBubbles(const Request& request)
{
    Sound sound(std::size_t{SECONDS} * SAMPLE_RATE);
    Random random(request.seed, 80);
    Ring loop(sound);
    addDrops(loop, random);
    addBed(sound, 1.6f, random);
    sound.normalize(PEAK);
    return {
        {"sound/bubbles_sound.ogg", encodeVorbis(sound, 0.6f, 2), std::to_string(SECONDS) + " s"}};
}

} // namespace media
