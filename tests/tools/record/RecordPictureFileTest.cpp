#include "PictureFile.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

namespace {

TEST(RecordPictureFileTest, WritesTheRowsTopDownWithoutAlpha)
{
    const TempDirectory folder;
    const record::Picture picture{2, 2, {255, 0, 0, 0, 0, 255, 0, 9, 0, 0, 255, 99, 1, 2, 3, 255}};
    record::writePng("picture.png", picture);

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, "picture.png"), 0) << image.message;
    EXPECT_EQ(image.width, 2U);
    EXPECT_EQ(image.height, 2U);
    EXPECT_EQ(image.format, static_cast<png_uint_32>(PNG_FORMAT_RGB));
    std::vector<unsigned char> rgb(12);
    ASSERT_NE(png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr), 0);
    EXPECT_THAT(rgb, testing::ElementsAre(255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3));
}

TEST(RecordPictureFileTest, SaysWhyItCannotBeWritten)
{
    const record::Picture picture{1, 1, {1, 2, 3, 4}};
    EXPECT_EQ(errorOf([&] { record::writePng("/nowhere/a.png", picture); }),
              "No such file or directory");
    EXPECT_EQ(errorOf([&] { record::writePng("/dev/full", picture); }), "No space left on device");
}

} // namespace
