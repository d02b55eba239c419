#include "MediaWatch.h"
#include "TempDirectory.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <poll.h>

namespace {

namespace fs = std::filesystem;

using show::MediaWatch;

class ShowMediaWatchTest : public testing::Test {
protected:
    TempDirectory folder;

    ShowMediaWatchTest()
    {
        fs::create_directories("reef/data");
        TempDirectory::write("reef/data/mocap.txt", "MOCAP");
        TempDirectory::write("beside", "");
    }

    static fs::path reef() { return fs::current_path() / "reef"; }

    static bool isReadable(const MediaWatch& watch)
    {
        pollfd events{watch.descriptor(), POLLIN, 0};
        return poll(&events, 1, 0) == 1;
    }
};

TEST_F(ShowMediaWatchTest, SeesEachChangeOnce)
{
    MediaWatch watch(reef());
    EXPECT_FALSE(watch.read());
    EXPECT_FALSE(isReadable(watch));

    const std::vector<std::function<void()>> changes = {
        [] { TempDirectory::write("reef/data/mocap.txt", "MOCAP 2"); },
        [] { TempDirectory::write("reef/data/new", ""); },
        [] { fs::rename("beside", "reef/data/moved"); },
        [] { fs::remove("reef/data/moved"); },
        [] { fs::permissions("reef/data/new", fs::perms::owner_read); },
        [] { fs::create_directory("reef/sound"); },
        [] { fs::permissions("reef", fs::perms::owner_all); },
        [] { fs::rename("reef", "other"); },
        [] { fs::create_directory("reef"); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i]();
        EXPECT_TRUE(isReadable(watch)) << i;
        EXPECT_TRUE(watch.read()) << i;
        EXPECT_FALSE(watch.read()) << i;
    }
}

TEST_F(ShowMediaWatchTest, ReadingIsNoChange)
{
    MediaWatch watch(reef());
    std::ifstream("reef/data/mocap.txt").get();
    TempDirectory::write("beside", "its neighbors do not count");
    TempDirectory::write("reef/status", "nor what is no media");
    EXPECT_FALSE(watch.read());
}

TEST_F(ShowMediaWatchTest, TheStatusFileIsNoMediumWhereverItIs)
{
    MediaWatch watch(reef(), reef() / "data/status.txt");
    // As it is written: under another name, then renamed.
    TempDirectory::write("reef/data/status.part.txt", "time=");
    fs::rename("reef/data/status.part.txt", "reef/data/status.txt");
    EXPECT_FALSE(watch.read());
    TempDirectory::write("reef/data/status", "another one");
    EXPECT_TRUE(watch.read());
    watch.renew();
    TempDirectory::write("reef/data/status.txt", "time=");
    EXPECT_FALSE(watch.read());
}

TEST_F(ShowMediaWatchTest, NewFoldersAreWatchedFromTheRenewalOn)
{
    MediaWatch watch(reef());
    fs::create_directory("reef/sound");
    fs::rename("reef/data", "reef/data.old");
    EXPECT_TRUE(watch.read());
    watch.renew();
    EXPECT_FALSE(watch.read());
    TempDirectory::write("reef/sound/voice", "");
    EXPECT_TRUE(watch.read());
}

TEST_F(ShowMediaWatchTest, ALinkToAnotherFolderIsAChange)
{
    fs::create_directory("pond");
    fs::create_directory_symlink("reef", "current");
    MediaWatch watch(fs::current_path() / "current");
    TempDirectory::write("reef/data/mocap.txt", "");
    EXPECT_TRUE(watch.read());

    fs::create_directory_symlink("pond", "next");
    fs::rename("next", "current");
    EXPECT_TRUE(watch.read());
    watch.renew();
    fs::create_directory("pond/data");
    EXPECT_TRUE(watch.read());
}

TEST_F(ShowMediaWatchTest, ASlashAtTheEndOfItsNameChangesNothing)
{
    MediaWatch watch(reef() / "");
    TempDirectory::write("reef/status", "no media");
    EXPECT_FALSE(watch.read());
    fs::rename("reef", "other");
    EXPECT_TRUE(watch.read());
    fs::create_directory("reef");
    EXPECT_TRUE(watch.read());
}

TEST_F(ShowMediaWatchTest, AFolderMayBeMissing)
{
    MediaWatch watch(fs::current_path() / "pond");
    fs::create_directory("pond");
    EXPECT_TRUE(watch.read());
}

} // namespace
