#include "MediaHash.h"

#include "TempDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

class MediaHashTest : public testing::Test {
protected:
    TempDirectory folder;
    std::uint64_t before;

    MediaHashTest()
    {
        for (const char* name : {"data", "sound", "fonts"}) {
            fs::create_directory(name);
        }
        TempDirectory::write("data/a", "fish");
        TempDirectory::write("data/b", "water");
        TempDirectory::write("sound/c", "voice");
        before = wall::hashOfMedia();
    }
};

} // namespace

TEST_F(MediaHashTest, EqualFilesHaveOneNumberWhereverTheyLie)
{
    fs::create_directory("copy");
    for (const char* name : {"sound", "fonts", "data"}) {
        fs::copy(name, fs::path("copy") / name, fs::copy_options::recursive);
    }
    TempDirectory::write("copy/README", "no medium");
    fs::current_path("copy");
    EXPECT_EQ(wall::hashOfMedia(), before);
}

TEST_F(MediaHashTest, ALinkToAFileIsThatFile)
{
    fs::rename("data/a", "elsewhere");
    fs::create_symlink("../elsewhere", "data/a");
    EXPECT_EQ(wall::hashOfMedia(), before);
}

TEST_F(MediaHashTest, ContentsAndNamesCount)
{
    TempDirectory::write("data/a", "fisH");
    EXPECT_NE(wall::hashOfMedia(), before) << "a byte";
    TempDirectory::write("data/a", "fish");
    EXPECT_EQ(wall::hashOfMedia(), before);
    fs::rename("data/a", "data/d");
    EXPECT_NE(wall::hashOfMedia(), before) << "a name";
    fs::rename("data/d", "fonts/a");
    EXPECT_NE(wall::hashOfMedia(), before) << "a folder";
    fs::rename("fonts/a", "data/a");
    TempDirectory::write("fonts/e", "");
    EXPECT_NE(wall::hashOfMedia(), before) << "an empty file";
}

TEST_F(MediaHashTest, BytesThatMoveToTheNextFileCount)
{
    TempDirectory::write("data/a", "fishwa");
    TempDirectory::write("data/b", "ter");
    EXPECT_NE(wall::hashOfMedia(), before);
}

TEST_F(MediaHashTest, AFileIsReadToItsEnd)
{
    const std::string large(200000, 'x'); // more than is read at once
    TempDirectory::write("data/a", large + "y");
    const std::uint64_t first = wall::hashOfMedia();
    TempDirectory::write("data/a", large + "z");
    EXPECT_NE(wall::hashOfMedia(), first);
}
