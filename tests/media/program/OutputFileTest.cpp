#include "OutputFile.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class OutputFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        folder = fs::path(testing::TempDir()) / ("kelpix-output-" + std::to_string(getpid()));
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path folder;
};

TEST_F(OutputFileTest, MakesTheFoldersAboveTheFile)
{
    media::writeFile(folder / "a/b/file", std::string("x\0y", 3));
    EXPECT_EQ(content(folder / "a/b/file"), std::string("x\0y", 3));
    EXPECT_FALSE(fs::exists(folder / "a/b/file.part"));
}

TEST_F(OutputFileTest, ReplacesAnOldFile)
{
    media::writeFile(folder / "file", "a long old content");
    media::writeFile(folder / "file", "new");
    EXPECT_EQ(content(folder / "file"), "new");
}

TEST_F(OutputFileTest, KeepsTheOldFileWhenTheNewOneCannotBeWritten)
{
    media::writeFile(folder / "file", "old");
    fs::create_directories(folder / "file.part");
    EXPECT_THROW(media::writeFile(folder / "file", "new"), std::runtime_error);
    EXPECT_EQ(content(folder / "file"), "old");
}

TEST_F(OutputFileTest, LeavesNothingBehindOnAFullDisk)
{
    // /dev/full takes the opening and refuses the bytes.
    std::error_code error;
    fs::create_symlink("/dev/full", folder / "file.part", error);
    ASSERT_FALSE(error);
    try {
        media::writeFile(folder / "file", "new");
        FAIL() << "the disk is full";
    } catch (const std::runtime_error& problem) {
        EXPECT_EQ(std::string(problem.what()),
                  "cannot write " + (folder / "file").string() + ": No space left on device");
    }
    EXPECT_FALSE(fs::exists(folder / "file"));
    EXPECT_FALSE(fs::exists(folder / "file.part"));
}

} // namespace
