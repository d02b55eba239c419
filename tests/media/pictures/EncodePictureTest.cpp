#include "EncodePicture.h"
#include "ReadPicture.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

namespace {

using media::Bitmap;

TEST(EncodePictureTest, PngGivesBackEveryByte)
{
    const TempDirectory folder;
    for (const int channels : {3, 4}) {
        Bitmap image{5, 3, channels, {}};
        for (int i = 0; i < 15 * channels; ++i) {
            image.bytes.push_back(static_cast<unsigned char>(i * 4));
        }
        TempDirectory::write("picture.png", media::encodePng(image));
        const Picture back = readPng("picture.png");
        EXPECT_EQ(back.width, 5);
        EXPECT_EQ(back.height, 3);
        EXPECT_EQ(back.channels, channels);
        EXPECT_EQ(back.bytes, image.bytes);
    }
}

TEST(EncodePictureTest, JpegGivesBackThePictureTopRowFirst)
{
    const TempDirectory folder;
    Bitmap image{16, 16, 3, {}};
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            image.bytes.insert(image.bytes.end(),
                               {static_cast<unsigned char>(y < 8 ? 200 : 20), 100, 50});
        }
    }
    TempDirectory::write("picture.jpg", media::encodeJpeg(image, 95));
    const Picture back = readJpeg("picture.jpg");
    EXPECT_EQ(back.width, 16);
    EXPECT_EQ(back.channels, 3);
    EXPECT_NEAR(back.at(3, 1, 0), 200, 6);
    EXPECT_NEAR(back.at(3, 14, 0), 20, 6);
}

TEST(EncodePictureTest, RefusesWhatTheLibrariesRefuse)
{
    EXPECT_THROW(media::encodeJpeg(Bitmap{0, 0, 3, {}}, 90), std::runtime_error);
    EXPECT_THROW(media::encodePng(Bitmap{0, 0, 4, {}}), std::runtime_error);
}

} // namespace
