#include "Launch.h"

#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <unistd.h>

namespace {

using testing::Contains;
using testing::Not;

WallLayout wallOf(const std::vector<std::string>& hosts)
{
    WallLayout layout;
    for (const std::string& host : hosts) {
        WallTile tile;
        tile.rank = static_cast<int>(layout.tiles.size());
        tile.host = host;
        layout.tiles.push_back(tile);
    }
    return layout;
}

/// The word behind another one.
std::string after(const std::vector<std::string>& words, const std::string& word)
{
    const auto at = std::find(words.begin(), words.end(), word);
    return at == words.end() || at + 1 == words.end() ? "nothing" : *(at + 1);
}

} // namespace

TEST(WallLaunchTest, AWallOfThisMachineNeedsNoOther)
{
    const auto words =
        wall::launchCommand(wallOf({"here", "here"}), "here", "hosts", {"/bin/wall", "x"});
    EXPECT_EQ(words.front(), "mpirun");
    EXPECT_EQ(after(words, "-n"), "2");
    EXPECT_EQ(after(words, "btl_tcp_if_include"), "lo");
    EXPECT_THAT(words, Not(Contains("--hostfile")));
    EXPECT_EQ(after(words, "/bin/wall"), "x");
    EXPECT_EQ(words.back(), "x");
}

TEST(WallLaunchTest, OtherMachinesAreReachedInTheOrderOfTheirTiles)
{
    const auto words =
        wall::launchCommand(wallOf({"reef-b", "reef-b", "reef-a"}), "reef-a", "hosts", {"w"});
    EXPECT_EQ(after(words, "-n"), "3");
    EXPECT_EQ(after(words, "--hostfile"), "hosts");
    EXPECT_EQ(after(words, "--map-by"), "seq");
    EXPECT_THAT(words, Not(Contains("btl_tcp_if_include")));
    EXPECT_EQ(after(words, "sh"), "-c");
    EXPECT_EQ(words.back(), "w");
}

TEST(WallLaunchTest, AFileOfAnyNameStaysAnArgument)
{
    const auto words =
        wall::launchCommand(wallOf({"here"}), "here", "hosts", {"/bin/wall", "--log", ":", "a:b"});
    EXPECT_THAT(words, Not(Contains(":")));
    EXPECT_EQ(after(words, "--log"), "./:");
    EXPECT_EQ(words.back(), "a:b");
}

TEST(WallLaunchTest, TheListOfHostsOutlivesTheStartOfTheLauncher)
{
    const std::string path = wall::fileInMemory("reef-b\nreef-a\n");
    std::ifstream file(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "reef-b\nreef-a\n");
    const int descriptor = std::stoi(path.substr(path.rfind('/') + 1));
    EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
    close(descriptor);
}
