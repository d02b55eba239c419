// The reader of tile configurations when memory runs out, wherever it does.

#include "TileConfig.h"

#include "EarlyExit.h"
#include "FailingMemory.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

/// Twenty hosts, this one last, with three windows of three cameras each.
std::string wall(const std::string& thisHost)
{
    std::string text = "Cluster\nTileMap 20 1\nMullions 0 0\nNodes 20\n";
    for (int n = 0; n < 20; ++n) {
        text += "Node\nHostname " + (n == 19 ? thisHost : "other") + "\nWindows 3\n";
        for (int w = 0; w < 3; ++w) {
            text += "Map 1 2\nLocation 3 4 5 6\nCameras 3\n";
            for (int c = 0; c < 3; ++c) {
                text += "Rectangle 1 2 3 4\nOffset 5 6\n";
            }
        }
    }
    return text;
}

TEST(TileMemoryTest, AWallIsReadWholeOrNotWhereverMemoryEnds)
{
    TempDirectory directory;
    char host[32] = {};
    gethostname(host, sizeof host - 1);
    TempDirectory::write("wall.cfg", wall(host));
    TileConfig config;
    CaptureStdout();
    failEachAllocation([&] { return config.readDisplayCfg("wall.cfg"); },
                       [&](int result, bool complete) {
                           if (result == 0 || complete) {
                               ASSERT_EQ(result, 0);
                               ASSERT_EQ(config.cluster->nList.size(), 20u);
                               ASSERT_EQ(config.thisNode, config.cluster->nList[19]);
                               EXPECT_EQ(config.thisNode->wList[2]->cList[2]->offset[1], 6);
                           } else {
                               EXPECT_EQ(result, -1);
                           }
                       });
    EXPECT_THAT(GetCapturedStdout(), testing::EndsWith(" identified!\n"));
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    for (const auto& descriptor : descriptors) {
        std::error_code gone;
        EXPECT_NE(std::filesystem::read_symlink(descriptor, gone).filename(), "wall.cfg");
    }
}

} // namespace
