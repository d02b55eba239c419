#include "OpenFile.h"

#include "TempDirectory.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Open = Files::Handle (*)(const char*);

class OpenFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        TempDirectory::write("file", "some text");
        ASSERT_EQ(mkfifo("pipe", 0600), 0);
    }

private:
    const TempDirectory directory_;
};

std::string contentOf(const char* name)
{
    std::ifstream in(name);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::size_t openDescriptors()
{
    std::size_t count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        count += fcntl(descriptor, F_GETFD) != -1;
    }
    return count;
}

TEST_F(OpenFileTest, ARegularFileIsRead)
{
    for (const Open open : {Files::openRegular, Files::openRegularOrFolder}) {
        const Files::Handle handle = open("file");
        ASSERT_NE(handle, nullptr);
        char text[32] = "";
        EXPECT_EQ(std::fread(text, 1, sizeof text, handle.get()), 9u);
        EXPECT_STREQ(text, "some text");
        EXPECT_NE(std::feof(handle.get()), 0);
    }
}

TEST_F(OpenFileTest, ALinkIsWhatItLeadsTo)
{
    ASSERT_EQ(symlink("file", "link"), 0);
    ASSERT_EQ(symlink("/dev/null", "device"), 0);
    EXPECT_NE(Files::openRegular("link"), nullptr);
    EXPECT_EQ(Files::openRegular("device"), nullptr);
}

TEST_F(OpenFileTest, WhatCannotBeOpenedGivesNoFile)
{
    for (const Open open : {Files::openRegular, Files::openRegularOrFolder, Files::create}) {
        EXPECT_EQ(open(nullptr), nullptr);
        EXPECT_EQ(open(""), nullptr);
        EXPECT_EQ(open("missing/file"), nullptr);
    }
}

// It would wait here for ever if it did not refuse them.
TEST_F(OpenFileTest, PipesAndDevicesAreNotRead)
{
    for (const Open open : {Files::openRegular, Files::openRegularOrFolder}) {
        EXPECT_EQ(open("pipe"), nullptr);
        EXPECT_EQ(open("/dev/null"), nullptr);
    }
}

TEST_F(OpenFileTest, ADirectoryIsReadOnlyWhereItIsAskedFor)
{
    EXPECT_EQ(Files::openRegular("."), nullptr);
    const Files::Handle handle = Files::openRegularOrFolder(".");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(std::getc(handle.get()), EOF);
    EXPECT_NE(std::ferror(handle.get()), 0);
}

TEST_F(OpenFileTest, AFileIsMadeOrEmptied)
{
    for (const char* name : {"new", "file"}) {
        Files::Handle handle = Files::create(name);
        ASSERT_NE(handle, nullptr);
        EXPECT_GE(std::fputs("text", handle.get()), 0);
        EXPECT_EQ(std::fclose(handle.release()), 0);
        EXPECT_EQ(contentOf(name), "text");
    }
}

TEST_F(OpenFileTest, AFileThatIsMadeHasTheUsersPermissions)
{
    const mode_t before = umask(027);
    const Files::Handle handle = Files::create("new");
    umask(before);
    struct stat status = {};
    ASSERT_EQ(stat("new", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(OpenFileTest, PipesAndDirectoriesAreNotWritten)
{
    EXPECT_EQ(Files::create("."), nullptr);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(Files::create("pipe"), nullptr);
    EXPECT_EQ(errno, ENXIO) << "nobody reads";
    const int reader = open("pipe", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(Files::create("pipe"), nullptr);
    EXPECT_EQ(errno, ENXIO) << "somebody reads";
    close(reader);
}

TEST_F(OpenFileTest, ADeviceIsWritten)
{
    Files::Handle handle = Files::create("/dev/full");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fcntl(fileno(handle.get()), F_GETFL) & O_NONBLOCK, 0) << "writing waits";
    std::fputs("text", handle.get());
    EXPECT_NE(std::fclose(handle.release()), 0) << "the disk is full";
}

TEST_F(OpenFileTest, NothingStaysOpen)
{
    const std::size_t before = openDescriptors();
    for (const Open open : {Files::openRegular, Files::openRegularOrFolder, Files::create}) {
        for (const char* name : {"file", "pipe", ".", "/dev/null", "missing/file"}) {
            open(name);
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(OpenFileTest, ChildrenDoNotInheritTheFile)
{
    for (const Open open : {Files::openRegular, Files::openRegularOrFolder, Files::create}) {
        const Files::Handle handle = open("file");
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(fcntl(fileno(handle.get()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    }
}

} // namespace
