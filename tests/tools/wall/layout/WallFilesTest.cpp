#include "WallFiles.h"

#include "TempDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace {

class WallFilesTest : public testing::Test {
protected:
    TempDirectory directory;
    WallFiles files;

    /// What is said about a wall; "" = nothing.
    std::string problemOf(const std::string& name)
    {
        const auto problem = readWallFiles(name, files);
        return problem ? problem->text() : "";
    }
};

TEST_F(WallFilesTest, TheSecondFileStandsBesideTheDescription)
{
    const std::string bytes("Cluster\0\xff\n", 10);
    TempDirectory::write("reef.cfg", bytes);
    EXPECT_EQ(problemOf("reef.cfg"), "");
    EXPECT_EQ(files.description, bytes);
    EXPECT_FALSE(files.hasMore);

    TempDirectory::write("reef.cfg.more", "Wall");
    EXPECT_EQ(problemOf("reef.cfg"), "");
    EXPECT_EQ(files.name, "reef.cfg");
    EXPECT_TRUE(files.hasMore);
    EXPECT_EQ(files.more, "Wall");

    TempDirectory::write("other.cfg", "");
    EXPECT_EQ(problemOf("other.cfg"), "");
    EXPECT_EQ(files.description, "");
    EXPECT_FALSE(files.hasMore) << "nothing is left of the wall before";
    EXPECT_EQ(files.more, "");
}

TEST_F(WallFilesTest, WhatCannotBeReadIsNamed)
{
    EXPECT_EQ(problemOf("missing.cfg"), "missing.cfg: cannot be opened: No such file or directory");
    ASSERT_EQ(mkfifo("pipe.cfg", 0600), 0);
    EXPECT_EQ(problemOf("pipe.cfg"), "pipe.cfg: cannot be opened: no regular file");
    EXPECT_EQ(problemOf("."), ".: cannot be opened: no regular file");
    TempDirectory::write("reef.cfg", "Cluster");
    std::filesystem::create_symlink("nowhere", "reef.cfg.more");
    EXPECT_EQ(problemOf("reef.cfg"), "reef.cfg.more: cannot be opened: No such file or directory");
    std::filesystem::remove("reef.cfg.more");
    std::filesystem::create_directory("reef.cfg.more");
    EXPECT_EQ(problemOf("reef.cfg"), "reef.cfg.more: cannot be opened: no regular file");
}

TEST_F(WallFilesTest, AFileHasAtMostOneMegabyte)
{
    TempDirectory::write("reef.cfg", std::string(1 << 20, ' '));
    EXPECT_EQ(problemOf("reef.cfg"), "");
    EXPECT_EQ(files.description.size(), 1u << 20);
    TempDirectory::write("reef.cfg", std::string((1 << 20) + 1, ' '));
    EXPECT_EQ(problemOf("reef.cfg"), "reef.cfg: is longer than 1 MiB");
}

} // namespace
