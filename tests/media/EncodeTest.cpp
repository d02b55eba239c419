#include "Encode.h"
#include "ReadPicture.h"
#include "ReadSound.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using media::Bitmap;

/// Bytes in a file for the readers that take a path.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& bytes)
        : path(testing::TempDir() + "kelpix-encode-" + std::to_string(getpid()))
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    ~TemporaryFile() { std::filesystem::remove(path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string path;
};

TEST(EncodeTest, PngGivesBackEveryByte)
{
    for (const int channels : {3, 4}) {
        Bitmap image{5, 3, channels, {}};
        for (int i = 0; i < 15 * channels; ++i) {
            image.bytes.push_back(static_cast<unsigned char>(i * 4));
        }
        const TemporaryFile file(media::encodePng(image));
        const Picture back = readPng(file.path);
        EXPECT_EQ(back.width, 5);
        EXPECT_EQ(back.height, 3);
        EXPECT_EQ(back.channels, channels);
        EXPECT_EQ(back.bytes, image.bytes);
    }
}

TEST(EncodeTest, JpegGivesBackThePictureTopRowFirst)
{
    Bitmap image{16, 16, 3, {}};
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            image.bytes.insert(image.bytes.end(),
                               {static_cast<unsigned char>(y < 8 ? 200 : 20), 100, 50});
        }
    }
    const TemporaryFile file(media::encodeJpeg(image, 95));
    const Picture back = readJpeg(file.path);
    EXPECT_EQ(back.width, 16);
    EXPECT_EQ(back.channels, 3);
    EXPECT_NEAR(back.at(3, 1, 0), 200, 6);
    EXPECT_NEAR(back.at(3, 14, 0), 20, 6);
}

TEST(EncodeTest, RefusesWhatTheLibrariesRefuse)
{
    EXPECT_THROW(media::encodeJpeg(Bitmap{0, 0, 3, {}}, 90), std::runtime_error);
    EXPECT_THROW(media::encodePng(Bitmap{0, 0, 4, {}}), std::runtime_error);
    EXPECT_THROW(media::encodeVorbis(media::Sound(10), -5.0f, 1), std::runtime_error);
}

TEST(EncodeTest, VorbisKeepsLengthSerialNumberAndSound)
{
    media::Sound sound(30000);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        sound.left[i] = 0.5f * std::sin(static_cast<float>(i) * 0.05f);
        sound.right[i] = 0.25f * std::sin(static_cast<float>(i) * 0.03f);
    }
    const std::string bytes = media::encodeVorbis(sound, 0.6f, 77);
    EXPECT_EQ(bytes, media::encodeVorbis(sound, 0.6f, 77));
    const TemporaryFile file(bytes);
    const Track back = readOgg(file.path);
    EXPECT_EQ(back.channels, 2);
    EXPECT_EQ(back.rate, 44100);
    EXPECT_EQ(back.serial, 77);
    ASSERT_EQ(back.samples, 30000);
    for (std::size_t i = 5000; i < 25000; ++i) {
        ASSERT_NEAR(back.pcm[0][i], sound.left[i], 0.03f);
        ASSERT_NEAR(back.pcm[1][i], sound.right[i], 0.03f);
    }
}

TEST(EncodeTest, AnEmptySoundIsAStreamWithoutSamples)
{
    const TemporaryFile file(media::encodeVorbis(media::Sound(0), 0.5f, 1));
    const Track back = readOgg(file.path);
    EXPECT_EQ(back.channels, 2);
    EXPECT_EQ(back.samples, 0);
}

} // namespace
