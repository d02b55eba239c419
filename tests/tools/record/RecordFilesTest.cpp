#include "PartFile.h"
#include "PictureFile.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <png.h>

namespace {

namespace fs = std::filesystem;
using record::PartFile;
using testing::HasSubstr;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(RecordPartFileTest, GetsItsNameWhenItIsComplete)
{
    const TempDirectory folder;
    TempDirectory::write("film.mp4", "old");
    PartFile part("film.mp4");
    EXPECT_EQ(part.name(), "film.part.mp4");
    EXPECT_TRUE(fs::exists("film.part.mp4"));
    TempDirectory::write("film.part.mp4", "new");
    EXPECT_EQ(content("film.mp4"), "old");
    part.keep();
    EXPECT_EQ(content("film.mp4"), "new");
    EXPECT_FALSE(fs::exists("film.part.mp4"));
    part.discard();
    EXPECT_EQ(content("film.mp4"), "new");
}

TEST(RecordPartFileTest, IsRemovedUnlessItIsKept)
{
    const TempDirectory folder;
    TempDirectory::write("film.mp4", "old");
    TempDirectory::write("film.part.mp4", "from a run that was cut off");
    {
        const PartFile part("film.mp4");
        EXPECT_EQ(content("film.part.mp4"), "");
    }
    EXPECT_EQ(content("film.mp4"), "old");
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST(RecordPartFileTest, AnEmptyFileIsNotKept)
{
    const TempDirectory folder;
    EXPECT_EQ(errorOf([] { PartFile("film.mp4").keep(); }),
              "cannot write film.mp4: nothing was written");
    EXPECT_TRUE(fs::is_empty("."));
}

TEST(RecordPartFileTest, SaysWhyItCannotBeWritten)
{
    const TempDirectory folder;
    TempDirectory::write("file", "no folder");
    fs::create_directory("film.mp4");
    EXPECT_EQ(errorOf([] { PartFile("film.mp4"); }), "cannot write film.mp4: Is a directory");
    EXPECT_EQ(errorOf([] { PartFile("nowhere/film.mp4"); }),
              "cannot write nowhere/film.mp4: No such file or directory");
    EXPECT_EQ(errorOf([] { PartFile("file/film.mp4"); }),
              "cannot write file/film.mp4: Not a directory");
}

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
