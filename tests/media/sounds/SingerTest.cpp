#include "Singer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using media::Singer;
using media::Sound;
using media::SungNote;
using media::Vowel;

constexpr double RATE = media::SAMPLE_RATE;
const Singer ALONE{5, 0.5f, 1.0f, 0.0f, 0.0, 1.0f};

/// A scale over an octave: short notes, on which no vibrato begins.
constexpr double BEGIN = 0.6;    // seconds
constexpr double NOTE = 0.24;    // seconds
constexpr double LOWEST = 45;    // semitones: 110 Hz
constexpr double STEP = 1.0 / 3; // semitones
constexpr int NOTES = 37;

double frequencyOf(double pitch)
{
    return 440 * std::exp2((pitch - 69) / 12);
}

/// The pitch that is sung at a time, in semitones: the fundamental's phase is followed from one
/// period of \p pitch to the next, under a Hann window of eight periods that keeps the other
/// harmonics out.
double pitchAt(const Sound& sound, double seconds, double pitch)
{
    const double f = frequencyOf(pitch);
    const auto period = static_cast<std::size_t>(std::lround(RATE / f));
    const auto window = [&](std::size_t start) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < 8 * period; ++i) {
            const double hann = 1 - std::cos(2 * std::numbers::pi * static_cast<double>(i) /
                                             static_cast<double>(8 * period));
            sum +=
                hann * static_cast<double>(sound.left[start + i]) *
                std::polar(1.0, -2 * std::numbers::pi * f * static_cast<double>(start + i) / RATE);
        }
        return sum;
    };
    const auto start = static_cast<std::size_t>(seconds * RATE) - 4 * period;
    const double turn = std::arg(window(start + period) * std::conj(window(start)));
    return pitch + 12 * std::log2(1 + turn / (2 * std::numbers::pi) * RATE /
                                          static_cast<double>(period) / f);
}

double loudness(const Sound& sound, double from, double to)
{
    double sum = 0;
    const auto begin = static_cast<std::size_t>(from * RATE);
    const auto end = static_cast<std::size_t>(to * RATE);
    for (std::size_t i = begin; i < end; ++i) {
        sum += static_cast<double>(sound.left[i]) * static_cast<double>(sound.left[i]);
    }
    return std::sqrt(sum / static_cast<double>(end - begin));
}

/// The strength of one frequency, by a Goertzel filter under a Hann window.
double strength(const Sound& sound, double from, double to, double frequency)
{
    const auto begin = static_cast<std::size_t>(from * RATE);
    const auto count = static_cast<std::size_t>((to - from) * RATE);
    std::complex<double> sum;
    for (std::size_t i = 0; i < count; ++i) {
        const double window = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) /
                                                   static_cast<double>(count));
        sum += window * static_cast<double>(sound.left[begin + i]) *
               std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(i) / RATE);
    }
    return std::abs(sum) / static_cast<double>(count);
}

TEST(SingerTest, HitsThePitchAndWaversAtFivePointThreeHertz)
{
    Sound sound(5 * media::SAMPLE_RATE);
    media::sing(sound, ALONE, {{0.2, 4.5, 60, Vowel::A, 0.8f}});
    std::vector<double> pitches;
    double mean = 0;
    double low = 99;
    double high = 0;
    for (double t = 1.5; t < 4.4; t += 0.01) {
        pitches.push_back(pitchAt(sound, t, 60));
        mean += pitches.back();
        low = std::min(low, pitches.back());
        high = std::max(high, pitches.back());
    }
    mean /= static_cast<double>(pitches.size());
    EXPECT_NEAR(mean, 60, 0.1);
    EXPECT_NEAR((high - low) / 2, 0.32, 0.12);
    // The rate is where the wavering of the pitch is strongest.
    double best = 0;
    double rate = 0;
    for (double f = 3; f < 9; f += 0.05) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < pitches.size(); ++i) {
            sum += (pitches[i] - mean) *
                   std::polar(1.0, -2 * std::numbers::pi * f * 0.01 * static_cast<double>(i));
        }
        if (std::abs(sum) > best) {
            best = std::abs(sum);
            rate = f;
        }
    }
    EXPECT_NEAR(rate, 5.3, 0.25);
}

TEST(SingerTest, GlidesFromNoteToNote)
{
    Sound sound(3 * media::SAMPLE_RATE);
    media::sing(sound, ALONE, {{0.2, 1.0, 60, Vowel::A, 0.8f}, {1.2, 1.0, 64, Vowel::A, 0.8f}});
    EXPECT_NEAR(pitchAt(sound, 1.10, 60), 60, 0.5);
    const double halfway = pitchAt(sound, 1.22, 62);
    EXPECT_GT(halfway, 60.5);
    EXPECT_LT(halfway, 63.7);
    EXPECT_NEAR(pitchAt(sound, 1.5, 64), 64, 0.4);
}

TEST(SingerTest, SwellsUpAndDiesAwayGently)
{
    Sound sound(3 * media::SAMPLE_RATE);
    media::sing(sound, ALONE, {{0.5, 1.5, 60, Vowel::O, 0.8f}});
    EXPECT_EQ(loudness(sound, 0, 0.49), 0);
    const double full = loudness(sound, 1.0, 1.5);
    EXPECT_LT(loudness(sound, 0.5, 0.53), 0.6 * full);
    EXPECT_LT(loudness(sound, 2.15, 2.2), 0.6 * full);
    EXPECT_GT(loudness(sound, 2.02, 2.07), 0.1 * full);
    EXPECT_LT(loudness(sound, 2.9, 3.0), 0.001 * full);
}

/// A resonance of the mouth near \p around: one harmonic is swept over it, by singing it at pitch
/// after pitch. What the source gives to that harmonic is the same at all of them. The flanks of
/// stronger resonances are no summits.
/// \param sound  a scale
/// \return the frequency of the highest summit; 0 for none
double resonanceOf(const Sound& sound, double around)
{
    // In the middle of the octave, the harmonic is where the resonance should be.
    const double harmonic = std::round(around / frequencyOf(LOWEST + 6));
    std::vector<double> frequencies;
    std::vector<double> energies;
    for (int i = 0; i < NOTES; ++i) {
        const double f = harmonic * frequencyOf(LOWEST + i * STEP);
        if (f < 0.77 * around || f > 1.3 * around) {
            continue;
        }
        const double from = BEGIN + (i + 0.4) * NOTE;
        const double to = BEGIN + (i + 0.95) * NOTE;
        double energy = 0;
        // The pitch drifts by a few cents.
        for (double near = 0.988 * f; near <= 1.012 * f; near += 1 / (to - from)) {
            energy += std::pow(strength(sound, from, to, near), 2);
        }
        frequencies.push_back(f);
        energies.push_back(energy);
    }
    constexpr std::ptrdiff_t NEAR = 2;
    double highest = 0;
    double found = 0;
    for (auto at = energies.begin() + NEAR; at < energies.end() - NEAR; ++at) {
        if (*at > highest && *at == *std::max_element(at - NEAR, at + NEAR + 1)) {
            highest = *at;
            found = frequencies[static_cast<std::size_t>(at - energies.begin())];
        }
    }
    return found;
}

struct Mouth {
    Vowel vowel;
    std::array<double, 4> formants;
};

class MouthTest : public testing::TestWithParam<Mouth> {};

TEST_P(MouthTest, HasFourFormantsWithinATenthOfTheTable)
{
    std::vector<SungNote> notes{{0.1, BEGIN - 0.1, LOWEST, GetParam().vowel, 0.8f}};
    for (int i = 0; i < NOTES; ++i) {
        notes.push_back({BEGIN + i * NOTE, NOTE, LOWEST + i * STEP, GetParam().vowel, 0.8f});
    }
    Sound sound(static_cast<std::size_t>((BEGIN + (NOTES + 1) * NOTE) * RATE));
    media::sing(sound, ALONE, notes);
    for (const double expected : GetParam().formants) {
        const double found = resonanceOf(sound, expected);
        EXPECT_NEAR(found, expected, 0.1 * expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Vowels, MouthTest,
                         testing::Values(Mouth{Vowel::A, {800, 1180, 2850, 3900}},
                                         Mouth{Vowel::E, {430, 2050, 2850, 3700}},
                                         Mouth{Vowel::O, {470, 850, 2800, 3800}},
                                         Mouth{Vowel::U, {340, 720, 2650, 3700}},
                                         Mouth{Vowel::M, {260, 1150, 2400, 3500}}));

TEST(SingerTest, StandsWhereThePanPutsIt)
{
    Sound sound(media::SAMPLE_RATE);
    Singer left = ALONE;
    left.pan = 0;
    media::sing(sound, left, {{0.1, 0.8, 60, Vowel::A, 0.8f}});
    EXPECT_GT(loudness(sound, 0.3, 0.8), 0.001);
    for (const float v : sound.right) {
        ASSERT_EQ(v, 0);
    }
}

TEST(SingerTest, WithoutNotesIsSilent)
{
    Sound sound(1000);
    media::sing(sound, ALONE, {});
    EXPECT_EQ(sound.peak(), 0);
}

} // namespace
