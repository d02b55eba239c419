#include "ImageFiles.h"
#include "Program.h"
#include "TempDirectory.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Runs the program in the working directory.
class IconRowsTest : public testing::Test {
protected:
    int run(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command = {KELPIX_ICON_ROWS};
        command.insert(command.end(), arguments.begin(), arguments.end());
        Program program(command, fs::current_path());
        const int status = program.wait();
        errors = program.errors();
        return status;
    }

    static void putPng(const char* name, const Picture& picture)
    {
        const TempPath path(".png");
        writePng(path, picture);
        fs::copy_file(path.name(), name);
    }

    TempDirectory folder;
    std::string errors;
};

TEST_F(IconRowsTest, RowsAreWrittenFromTheTop)
{
    putPng("a.png", {1, 2, 4, {1, 2, 3, 4, 5, 6, 7, 8}});
    EXPECT_EQ(run({"rows.cpp", "a.png"}), 0);
    std::ifstream file("rows.cpp");
    const std::string source{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(source.find("ICON_0[] = {\n1,2,3,4,\n5,6,7,8,\n};"), std::string::npos) << source;
    EXPECT_NE(source.find("{ICON_0, 1, 2},"), std::string::npos) << source;
}

TEST_F(IconRowsTest, WhatIsNoIconIsNamedAndNothingIsWritten)
{
    putPng("rgb.png", {1, 1, 3, {1, 2, 3}});
    TempDirectory::write("text.png", "no picture");
    for (const std::string name : {"rgb.png", "text.png", "missing.png"}) {
        EXPECT_EQ(run({"rows.cpp", name}), 1);
        EXPECT_NE(errors.find("kelpix-icon-rows: " + name + " is no PNG file with RGBA\n"),
                  std::string::npos)
            << errors;
        EXPECT_FALSE(fs::exists("rows.cpp"));
    }
}

TEST_F(IconRowsTest, WithoutAPictureItPrintsItsUsage)
{
    EXPECT_EQ(run({"rows.cpp"}), 2);
    EXPECT_EQ(errors, "usage: kelpix-icon-rows SOURCE PNG...\n");
}

} // namespace
