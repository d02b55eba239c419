#include "EncodeSound.h"
#include "ReadSound.h"

#include "TempDirectory.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

TEST(EncodeSoundTest, RefusesWhatTheLibraryRefuses)
{
    EXPECT_THROW(media::encodeVorbis(media::Sound(10), -5.0f, 1), std::runtime_error);
}

TEST(EncodeSoundTest, VorbisKeepsLengthSerialNumberAndSound)
{
    media::Sound sound(30000);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        sound.left[i] = 0.5f * std::sin(static_cast<float>(i) * 0.05f);
        sound.right[i] = 0.25f * std::sin(static_cast<float>(i) * 0.03f);
    }
    const std::string bytes = media::encodeVorbis(sound, 0.6f, 77);
    EXPECT_EQ(bytes, media::encodeVorbis(sound, 0.6f, 77));
    const TempDirectory folder;
    TempDirectory::write("sound.ogg", bytes);
    const Track back = readOgg("sound.ogg");
    EXPECT_EQ(back.channels, 2);
    EXPECT_EQ(back.rate, 44100);
    EXPECT_EQ(back.serial, 77);
    ASSERT_EQ(back.samples, 30000);
    for (std::size_t i = 5000; i < 25000; ++i) {
        ASSERT_NEAR(back.pcm[0][i], sound.left[i], 0.03f);
        ASSERT_NEAR(back.pcm[1][i], sound.right[i], 0.03f);
    }
}

TEST(EncodeSoundTest, AnEmptySoundIsAStreamWithoutSamples)
{
    const TempDirectory folder;
    TempDirectory::write("sound.ogg", media::encodeVorbis(media::Sound(0), 0.5f, 1));
    const Track back = readOgg("sound.ogg");
    EXPECT_EQ(back.channels, 2);
    EXPECT_EQ(back.samples, 0);
}

} // namespace
