#include "Reverb.h"
#include "Bird.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using media::SAMPLE_RATE;
using media::Sound;

double loudness(const Sound& sound, double from, double to)
{
    double sum = 0;
    const auto begin = static_cast<std::size_t>(from * SAMPLE_RATE);
    const auto end = static_cast<std::size_t>(to * SAMPLE_RATE);
    for (std::size_t i = begin; i < end; ++i) {
        sum += static_cast<double>(sound.left[i]) * static_cast<double>(sound.left[i]) +
               static_cast<double>(sound.right[i]) * static_cast<double>(sound.right[i]);
    }
    return std::sqrt(sum / static_cast<double>(end - begin));
}

TEST(ReverbTest, LeavesTheSoundItselfAndAddsEchoesLater)
{
    Sound sound(SAMPLE_RATE);
    sound.left[0] = 1;
    media::reverberate(sound, 2, 0.3f);
    EXPECT_EQ(sound.left[0], 1);
    EXPECT_EQ(loudness(sound, 0.001, 0.03), 0) << "the walls are some way off";
    EXPECT_GT(loudness(sound, 0.1, 0.2), 1e-4);
}

TEST(ReverbTest, FallsBySixtyDecibelsInItsDecay)
{
    // A tone of 200 Hz, low enough for the damping of the high notes to spare it.
    Sound sound(4 * SAMPLE_RATE);
    for (std::size_t i = 0; i < SAMPLE_RATE / 2; ++i) {
        sound.left[i] = sound.right[i] = std::sin(static_cast<float>(i) * 0.0285f);
    }
    media::reverberate(sound, 2, 0.3f);
    const double fall = 20 * std::log10(loudness(sound, 0.7, 0.9) / loudness(sound, 2.7, 2.9));
    EXPECT_NEAR(fall, 60, 8);
}

TEST(ReverbTest, KeepsSilenceSilent)
{
    Sound sound(5000);
    media::reverberate(sound, 2, 0.3f);
    EXPECT_EQ(sound.peak(), 0);
}

TEST(BirdTest, WarblesForLessThanABeatAndAHalf)
{
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Sound sound(3 * SAMPLE_RATE);
        media::Random random(seed);
        media::warble(sound, 1, 0.5f, 0.5f, random);
        EXPECT_EQ(loudness(sound, 0, 1), 0);
        EXPECT_GT(loudness(sound, 1, 1.6), 0.01);
        EXPECT_EQ(loudness(sound, 2.3, 3), 0);
        EXPECT_LT(sound.peak(), 0.6f);
    }
}

TEST(BirdTest, IsCutOffAtTheEndOfTheSound)
{
    Sound sound(SAMPLE_RATE / 10);
    media::Random random(1);
    media::warble(sound, 0, 0.5f, 0.5f, random);
    media::warble(sound, 5, 0.5f, 0.5f, random);
    EXPECT_GT(sound.peak(), 0);
}

} // namespace
