#include "PartFile.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using Files::PartFile;
using Files::writeWhole;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(PartFileTest, GetsItsNameWhenItIsComplete)
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

TEST(PartFileTest, IsRemovedUnlessItIsKept)
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

TEST(PartFileTest, SaysWhyItCannotBeWritten)
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

TEST(PartFileTest, SaysWhyItCannotGetItsName)
{
    const TempDirectory folder;
    PartFile part("film.mp4");
    fs::create_directory("film.mp4");
    EXPECT_EQ(errorOf([&] { part.keep(); }), "cannot write film.mp4: Is a directory");
    EXPECT_TRUE(fs::exists("film.part.mp4"));
    part.discard();
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST(PartFileTest, DoesNotWaitForAPipe)
{
    const TempDirectory folder;
    ASSERT_EQ(mkfifo("film.part.mp4", 0600), 0);
    EXPECT_EQ(errorOf([] { PartFile("film.mp4"); }),
              "cannot write film.mp4: No such device or address");
}

TEST(WriteWholeTest, MakesTheFoldersAboveTheFile)
{
    const TempDirectory folder;
    writeWhole("a/b/file", std::string("x\0y", 3));
    EXPECT_EQ(content("a/b/file"), std::string("x\0y", 3));
    EXPECT_FALSE(fs::exists("a/b/file.part"));
    writeWhole("empty", "");
    EXPECT_TRUE(fs::is_empty("empty"));
}

TEST(WriteWholeTest, ReplacesAnOldFile)
{
    const TempDirectory folder;
    writeWhole("file", "a long old content");
    writeWhole("file", "new");
    EXPECT_EQ(content("file"), "new");
}

TEST(WriteWholeTest, KeepsTheOldFileWhenTheNewOneCannotBeWritten)
{
    const TempDirectory folder;
    writeWhole("file", "old");
    fs::create_directory("file.part");
    EXPECT_EQ(errorOf([] { writeWhole("file", "new"); }), "cannot write file: Is a directory");
    EXPECT_EQ(content("file"), "old");
    EXPECT_EQ(errorOf([] { writeWhole("file/below", "new"); }),
              "cannot write file/below: Not a directory");
    EXPECT_EQ(content("file"), "old");
}

TEST(WriteWholeTest, LeavesNothingBehindOnAFullDisk)
{
    const TempDirectory folder;
    // /dev/full takes the opening and refuses the bytes.
    fs::create_symlink("/dev/full", "file.part");
    EXPECT_EQ(errorOf([] { writeWhole("file", "new"); }),
              "cannot write file: No space left on device");
    EXPECT_TRUE(fs::is_empty("."));
}

} // namespace
