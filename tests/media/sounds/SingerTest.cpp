#include "Singer.h"

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

TEST(SingerTest, ShapesTheVowelByItsResonances)
{
    // Sung low, where the harmonics lie close enough to draw the resonances.
    const auto sung = [](Vowel vowel) {
        Sound sound(2 * media::SAMPLE_RATE);
        media::sing(sound, ALONE, {{0.1, 1.8, 45, vowel, 0.8f}});
        return sound;
    };
    const double f = frequencyOf(45);
    const auto near = [f](const Sound& sound, double target) {
        double sum = 0;
        for (int k = 1; k <= 25; ++k) {
            if (std::abs(k * f - target) < 70) {
                sum = std::max(sum, strength(sound, 0.3, 0.6, k * f));
            }
        }
        return sum;
    };
    const Sound a = sung(Vowel::A);
    EXPECT_GT(near(a, 800), 3 * near(a, 440));
    EXPECT_GT(near(a, 1180), 3 * near(a, 1980));
    const Sound e = sung(Vowel::E);
    EXPECT_GT(near(e, 430), 3 * near(e, 1200));
    EXPECT_GT(near(e, 2050), 2 * near(e, 1400));
    const Sound u = sung(Vowel::U);
    EXPECT_GT(near(u, 340), 3 * near(u, 1180));
    const Sound hum = sung(Vowel::M);
    EXPECT_GT(near(hum, 220), 10 * near(hum, 800));
}

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
