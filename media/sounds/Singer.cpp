#include "Singer.h"

#include "Point.h"
#include "Random.h"

#include <cmath>
#include <numbers>

namespace media {

namespace {

constexpr double PI2 = 2 * std::numbers::pi;
constexpr int HARMONICS = 25;
constexpr std::size_t FORMANTS = 4;
constexpr double VIBRATO = 5.3;

/// The control signals are updated once per FRAME samples and interpolated linearly in between.
constexpr std::size_t FRAME = 64;
constexpr double FRAME_SECONDS = static_cast<double>(FRAME) / SAMPLE_RATE;

/// The resonances of a mouth.
struct Mouth {
    std::array<double, FORMANTS> frequency; ///< Hz
    std::array<double, FORMANTS> width;     ///< Hz
    std::array<double, FORMANTS> level;     ///< dB
};

const Mouth& mouthOf(Vowel vowel)
{
    static constexpr Mouth MOUTHS[] = {
        {{800, 1180, 2850, 3900}, {110, 120, 150, 180}, {0, -5, -17, -25}},   // A
        {{430, 2050, 2850, 3700}, {100, 130, 150, 180}, {-2, -11, -16, -27}}, // E
        {{470, 850, 2800, 3800}, {100, 110, 140, 170}, {-2, -7, -22, -29}},   // O
        {{340, 720, 2650, 3700}, {100, 110, 160, 180}, {-5, -13, -28, -34}},  // U
        {{260, 1150, 2400, 3500}, {100, 160, 220, 260}, {-7, -26, -34, -40}}, // M
    };
    return MOUTHS[static_cast<std::size_t>(vowel)];
}

/// One period of the glottal source: a table of harmonics.
class Buzz {
public:
    /// \param slope  harmonic k has the strength k^-slope: large = soft, small = bright
    explicit Buzz(double slope)
    {
        for (std::size_t i = 0; i < SIZE; ++i) {
            double sum = 0;
            for (int k = 1; k <= HARMONICS; ++k) {
                const double x = PI2 * k * static_cast<double>(i) / SIZE;
                sum += std::sin(x) * std::pow(k, -slope);
            }
            table[i] = static_cast<float>(sum);
        }
        table[SIZE] = table[0];
    }

    /// \param phase  0 .. 1
    float at(double phase) const
    {
        const double x = phase * SIZE;
        const auto i = static_cast<std::size_t>(x);
        const auto t = static_cast<float>(x - static_cast<double>(i));
        return table[i] + (table[i + 1] - table[i]) * t;
    }

private:
    static constexpr std::size_t SIZE = 2048;
    std::array<float, SIZE + 1> table;
};

/// A band-pass of unit gain at its center that stays stable while it is being tuned (the
/// trapezoidal state-variable filter of Zavalishin, "The Art of VA Filter Design").
class Resonator {
public:
    void tune(double frequency, double width)
    {
        g = static_cast<float>(std::tan(std::numbers::pi * frequency / SAMPLE_RATE));
        damping = static_cast<float>(width / frequency);
        scale = 1 / (1 + g * (g + damping));
    }

    float filter(float in)
    {
        const float band = scale * (first + g * (in - second));
        const float low = second + g * band;
        first = 2 * band - first;
        second = 2 * low - second;
        return band * damping;
    }

private:
    float g = 0;
    float damping = 1;
    float scale = 1;
    float first = 0;
    float second = 0;
};

/// \p value after a frame in which it approaches \p target exponentially, with a time constant of
/// \p seconds.
double follow(double value, double target, double seconds)
{
    return target + (value - target) * std::exp(-FRAME_SECONDS / seconds);
}

/// The control signals of a singer at one moment of the line.
class Throat {
public:
    Throat(const Singer& who, const std::vector<SungNote>& line)
        : singer(who), notes(line), random(who.seed, 60)
    {
    }

    /// Goes on by one frame, to time \p now in seconds.
    void advance(double now);

    bool silent() const { return level < 1e-5 && breath < 1e-5; }

    double frequency = 220; ///< Hz
    double level = 0;       ///< of the buzz
    double breath = 0;      ///< of the noise
    double effort = 0;      ///< 0 = soft .. 1 = bright
    Mouth mouth = mouthOf(Vowel::M);

private:
    const Singer& singer;
    const std::vector<SungNote>& notes;
    Random random;
    std::size_t next = 0;
    double pitch = 0;
    double drift = 0;
    double waver = 0;
    double push = 0; ///< of the lungs, which the level follows
};

void Throat::advance(double now)
{
    while (next < notes.size() && now >= notes[next].start + notes[next].duration) {
        ++next;
    }
    const bool sounding = next < notes.size() && now >= notes[next].start;
    double target = 0;
    double depth = 0;
    if (sounding) {
        const SungNote& note = notes[next];
        const double held = now - note.start;
        if (level < 0.02) {
            // A phrase begins a little below its note.
            pitch = note.pitch - 1.2;
        }
        pitch = follow(pitch, note.pitch, 0.035);
        // A held note swells; a small dip separates it from the last one.
        const double swell = 0.82 + 0.18 * std::sin(std::numbers::pi * held / note.duration);
        target = note.loudness * swell * (1 - 0.30 * std::exp(-held / 0.05));
        depth = 0.32 * smoothstep(0.25f, 0.9f, static_cast<float>(held));
        const Mouth& goal = mouthOf(note.vowel);
        for (std::size_t i = 0; i < FORMANTS; ++i) {
            mouth.frequency[i] = follow(mouth.frequency[i], goal.frequency[i], 0.055);
            mouth.width[i] = follow(mouth.width[i], goal.width[i], 0.055);
            mouth.level[i] = follow(mouth.level[i], goal.level[i], 0.055);
        }
    }
    // Two stages in a row: a note swells up from nothing without a sudden start.
    push = follow(push, target, target > push ? 0.04 : 0.11);
    level = follow(level, push, 0.025);
    effort = follow(effort, target, 0.15);
    const double air = sounding ? 0.012 + 0.05 * std::max(target - level, 0.0) : 0.0;
    breath = follow(breath, air * (target + 0.2), 0.05);
    // The pitch drifts by a few cents.
    drift = follow(drift, random.between(-0.9f, 0.9f), 0.12);
    waver += VIBRATO * FRAME_SECONDS * (1 + 0.04 * drift);
    const double semitones =
        pitch + depth * std::sin(PI2 * waver) + 0.10 * drift + singer.detune / 100.0;
    frequency = 440 * std::exp2((semitones - 69) / 12);
}

} // namespace

void sing(Sound& sound, const Singer& singer, const std::vector<SungNote>& notes)
{
    static const Buzz SOFT(1.4);
    static const Buzz BRIGHT(0.55);
    Throat throat(singer, notes);
    Random noise(singer.seed, 61);
    std::array<Resonator, FORMANTS> resonators;
    std::array<float, FORMANTS> gains{};
    const float left = std::sqrt(1 - singer.pan) * singer.gain;
    const float right = std::sqrt(singer.pan) * singer.gain;
    double phase = 0;
    for (std::size_t start = 0; start + FRAME <= sound.size(); start += FRAME) {
        const double oldFrequency = throat.frequency;
        const double oldLevel = throat.level;
        throat.advance(static_cast<double>(start) / SAMPLE_RATE - singer.late);
        if (throat.silent()) {
            continue;
        }
        for (std::size_t i = 0; i < FORMANTS; ++i) {
            double center = throat.mouth.frequency[i] * singer.tract;
            // High notes open the jaw, so that the first resonance stays above the note.
            center = i == 0 ? std::max(center, throat.frequency * 1.05) : center;
            resonators[i].tune(center, throat.mouth.width[i]);
            // Alternating signs: neighboring resonances would cancel halfway between otherwise.
            const double sign = i % 2 == 0 ? 1 : -1;
            gains[i] = static_cast<float>(sign * std::pow(10, throat.mouth.level[i] / 20));
        }
        const auto bright = static_cast<float>(throat.effort);
        for (std::size_t n = 0; n < FRAME; ++n) {
            const double t = static_cast<double>(n) / FRAME;
            phase += (oldFrequency + (throat.frequency - oldFrequency) * t) / SAMPLE_RATE;
            phase -= std::floor(phase);
            const auto level = static_cast<float>(oldLevel + (throat.level - oldLevel) * t);
            const float buzz = SOFT.at(phase) * (1 - bright) + BRIGHT.at(phase) * bright;
            const float air = noise.between(-1, 1) * static_cast<float>(throat.breath) * 6;
            const float in = buzz * level + air;
            float out = 0;
            for (std::size_t i = 0; i < FORMANTS; ++i) {
                out += gains[i] * resonators[i].filter(in);
            }
            sound.left[start + n] += out * left;
            sound.right[start + n] += out * right;
        }
    }
}

} // namespace media
