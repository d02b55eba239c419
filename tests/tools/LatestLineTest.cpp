#include "LatestLine.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using status::LatestLine;

std::string content(const fs::path& path)
{
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

TEST(LatestLineTest, EachLineTakesThePlaceOfTheOneBefore)
{
    const TempDirectory folder;
    TempDirectory::write("status", "day before\nand more\n");
    LatestLine file("status");
    file.check();
    EXPECT_EQ(content("status"), "day before\nand more\n");
    file.write("first");
    EXPECT_EQ(content("status"), "first\n");
    file.write("2");
    EXPECT_EQ(content("status"), "2\n");
    // Nothing else is left there.
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 1);
}

TEST(LatestLineTest, ALinkGetsEachLine)
{
    const TempDirectory folder;
    TempDirectory::write("log", "before\n");
    fs::create_symlink("log", "link");
    LatestLine file("link");
    file.check();
    file.write("first");
    file.write("second");
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(content("log"), "before\nfirst\nsecond\n");
}

TEST(LatestLineTest, WhatCannotBeWrittenIsSaid)
{
    const TempDirectory folder;
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    TempDirectory::write("file", "");
    const std::pair<const char*, const char*> cases[] = {
        {"pipe", "cannot write pipe: not a file"}, // it would wait for a reader
        {".", "cannot write .: Is a directory"},
        {"file/status", "cannot write file/status: Not a directory"},
    };
    for (const auto& [path, message] : cases) {
        LatestLine file(path);
        EXPECT_EQ(errorOf([&] { file.check(); }), message);
        EXPECT_EQ(errorOf([&] { file.write("line"); }), message);
    }
    fs::create_symlink("nothing", "link");
    EXPECT_EQ(errorOf([] { LatestLine("link").check(); }),
              "cannot write link: No such file or directory");
}
