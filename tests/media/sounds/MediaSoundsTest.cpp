#include "ReadSound.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

const Track& voice()
{
    static const Track track = readOgg(KELPIX_MEDIA_DIR "/sound/magpie_vocal.ogg");
    return track;
}

const Track& bubbles()
{
    static const Track track = readOgg(KELPIX_MEDIA_DIR "/sound/bubbles_sound.ogg");
    return track;
}

double peak(const Track& track)
{
    float highest = 0;
    for (const auto& channel : track.pcm) {
        for (const float v : channel) {
            highest = std::max(highest, std::abs(v));
        }
    }
    return highest;
}

/// How strong the frequencies from low to high are between two times: the sum over a comb of
/// Goertzel filters, as close together as a window of that length can tell them apart.
double band(const Track& track, double from, double to, double low, double high)
{
    const auto rate = static_cast<double>(track.rate);
    const auto begin = static_cast<std::size_t>(from * rate);
    const auto count = static_cast<std::size_t>((to - from) * rate);
    const double step = 1 / (to - from);
    double energy = 0;
    for (double f = low; f < high; f += step) {
        const double k = 2 * std::cos(2 * std::numbers::pi * f / rate);
        double a = 0;
        double b = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double window =
                0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) /
                                     static_cast<double>(count));
            const double v = window * static_cast<double>(track.pcm[0][begin + i]);
            const double next = v + k * a - b;
            b = a;
            a = next;
        }
        energy += a * a + b * b - k * a * b;
    }
    return 10 * std::log10(energy + 1e-20);
}

TEST(VoiceTest, IsTwoMinutesOfStereo)
{
    EXPECT_EQ(voice().channels, 2);
    EXPECT_EQ(voice().rate, 44100);
    EXPECT_EQ(voice().samples, 120LL * 44100);
    EXPECT_EQ(voice().pcm[0].size(), 120u * 44100u);
    EXPECT_EQ(voice().serial, 1);
}

TEST(VoiceTest, PeaksSixDecibelsBelowFullScale)
{
    EXPECT_NEAR(decibels(peak(voice())), -6.2, 0.5);
    EXPECT_GT(decibels(level(voice(), 0, 120)), -24) << "most of it is well audible";
}

TEST(VoiceTest, BeginsAndEndsInSilence)
{
    EXPECT_LT(decibels(level(voice(), 0, 0.25)), -70);
    EXPECT_LT(decibels(level(voice(), 119.97, 120)), -60);
    for (const auto& channel : voice().pcm) {
        EXPECT_LT(std::abs(channel.front()), 1e-3f);
        EXPECT_LT(std::abs(channel.back()), 1e-3f);
    }
}

TEST(VoiceTest, FadesOutInItsLastHalfSecond)
{
    double before = level(voice(), 119.3, 119.5);
    EXPECT_GT(decibels(before), -80) << "there is something to fade";
    for (double t = 119.5; t < 119.95; t += 0.1) {
        const double now = level(voice(), t, t + 0.1);
        EXPECT_LT(now, before);
        before = now;
    }
}

TEST(VoiceTest, BeginsSoftlyWhileTheSceneIsStillBuildingItsBodies)
{
    const double whole = decibels(level(voice(), 3, 111));
    EXPECT_LT(decibels(level(voice(), 0, 3)), whole - 10);
    EXPECT_GT(decibels(level(voice(), 1, 3)), -50) << "soft is not silent";
}

TEST(VoiceTest, HasNoClicks)
{
    float step = 0;
    for (const auto& channel : voice().pcm) {
        for (std::size_t i = 1; i < channel.size(); ++i) {
            step = std::max(step, std::abs(channel[i] - channel[i - 1]));
        }
    }
    EXPECT_LT(step, 0.2f);
}

TEST(VoiceTest, IsWideAndSurvivesMono)
{
    double middle = 0;
    double side = 0;
    for (std::size_t i = 0; i < voice().pcm[0].size(); ++i) {
        const auto left = static_cast<double>(voice().pcm[0][i]);
        const auto right = static_cast<double>(voice().pcm[1][i]);
        middle += (left + right) * (left + right) / 4;
        side += (left - right) * (left - right) / 4;
    }
    // Mono keeps the middle alone: what it loses is 10 log (1 + side / middle).
    EXPECT_LT(10 * std::log10(1 + side / middle), 1.5);
    EXPECT_GT(10 * std::log10(side / middle), -10);
}

TEST(VoiceTest, FallsOffTowardsHighFrequenciesAsSungVoicesDo)
{
    // Between 500 Hz and 4 kHz by some 10 dB an octave, in the held notes of three phrases.
    double low = 0;
    double high = 0;
    for (const double t : {4.4, 31.4, 85.4}) {
        low += band(voice(), t, t + 0.1, 500, 1000) / 3;
        high += band(voice(), t, t + 0.1, 2000, 4000) / 3;
    }
    EXPECT_GT(low - high, 2 * 6);
    EXPECT_LT(low - high, 2 * 13);
}

TEST(VoiceTest, SoundsItsVowels)
{
    // The second note of the first phrase is held on an open vowel: its first two resonances at
    // about 800 and 1200 Hz stand out above those next to them, and the third shines at 2900 Hz.
    const double open = band(voice(), 4.4, 4.6, 700, 1400);
    EXPECT_GT(open, band(voice(), 4.4, 4.6, 150, 690) + 3);
    EXPECT_GT(open, band(voice(), 4.4, 4.6, 1400, 2500) + 15);
    EXPECT_GT(band(voice(), 4.4, 4.6, 2500, 3200), band(voice(), 4.4, 4.6, 1500, 2200) + 3);
    // The fourth phrase ends on a closed vowel: the low resonance carries it.
    EXPECT_GT(band(voice(), 14.4, 14.6, 250, 690), band(voice(), 14.4, 14.6, 700, 1400) + 8);
}

TEST(VoiceTest, IsAnsweredByTheBirdAbove)
{
    // In the rest after the second phrase the bird whistles where no voice sings.
    EXPECT_GT(band(voice(), 8.9, 9.1, 1300, 3000), band(voice(), 5.8, 6.0, 1300, 3000) + 10);
}

TEST(BubblesSoundTest, IsAStereoLoopOfSixteenToTwentySeconds)
{
    EXPECT_EQ(bubbles().channels, 2);
    EXPECT_EQ(bubbles().rate, 44100);
    EXPECT_GE(bubbles().seconds(), 16);
    EXPECT_LE(bubbles().seconds(), 20);
    EXPECT_EQ(bubbles().pcm[0].size(), static_cast<std::size_t>(bubbles().samples));
    EXPECT_EQ(bubbles().serial, 2);
}

TEST(BubblesSoundTest, PeaksThreeDecibelsBelowFullScale)
{
    EXPECT_NEAR(decibels(peak(bubbles())), -3, 0.5);
}

TEST(BubblesSoundTest, LoopsWithoutASeam)
{
    for (const auto& channel : bubbles().pcm) {
        std::vector<float> jumps;
        std::vector<float> bends;
        for (std::size_t i = 2; i < channel.size(); ++i) {
            jumps.push_back(std::abs(channel[i] - channel[i - 1]));
            bends.push_back(std::abs(channel[i] - 2 * channel[i - 1] + channel[i - 2]));
        }
        // What only one sample in a thousand exceeds.
        const auto most = static_cast<std::ptrdiff_t>(jumps.size() / 1000 * 999);
        std::nth_element(jumps.begin(), jumps.begin() + most, jumps.end());
        std::nth_element(bends.begin(), bends.begin() + most, bends.end());
        const float a = channel[channel.size() - 2];
        const float b = channel.back();
        const float c = channel[0];
        const float d = channel[1];
        EXPECT_LE(std::abs(c - b), jumps[static_cast<std::size_t>(most)]);
        EXPECT_LE(std::abs(c - 2 * b + a), bends[static_cast<std::size_t>(most)]);
        EXPECT_LE(std::abs(d - 2 * c + b), bends[static_cast<std::size_t>(most)]);
    }
}

TEST(BubblesSoundTest, NeverFallsSilent)
{
    for (double t = 0; t + 0.25 <= bubbles().seconds(); t += 0.25) {
        EXPECT_GT(decibels(level(bubbles(), t, t + 0.25)), -50) << t;
    }
}

TEST(BubblesSoundTest, RingsAtThePitchesOfSmallBubbles)
{
    for (const double t : {2.0, 9.0, 15.0}) {
        EXPECT_GT(band(bubbles(), t, t + 0.2, 350, 2600),
                  band(bubbles(), t, t + 0.2, 4000, 8000) + 20);
    }
}

} // namespace
