// The walls in docs/wall.md and in examples/wall.cfg.

#include "Walls.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string read(const std::string& name)
{
    std::ifstream file(KELPIX_SOURCE_DIR "/" + name);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The blocks of docs/wall.md that start with a word.
std::vector<std::string> blocksOf(const std::string& word)
{
    const std::string guide = read("docs/wall.md");
    std::vector<std::string> blocks;
    const std::string fence = "```text\n";
    for (std::size_t at = guide.find(fence); at != std::string::npos; at = guide.find(fence, at)) {
        at += fence.size();
        const std::string block = guide.substr(at, guide.find("```", at) - at);
        const std::size_t start = block.find_first_not_of(' ');
        if (start != std::string::npos && block.compare(start, word.size(), word) == 0) {
            blocks.push_back(block);
        }
    }
    return blocks;
}

TEST(WallGuideTest, TheExampleIsTheWallOfTheDrawing)
{
    const WallLayout wall = layoutOf(read("examples/wall.cfg"));
    EXPECT_EQ(wall.width, 5836);
    EXPECT_EQ(wall.height, 2192);
    const WallTile& tile = wall.tiles.at(2);
    EXPECT_EQ(tile.host, "reef-middle");
    EXPECT_EQ(tile.column, 1);
    EXPECT_EQ(tile.row, 0);
    EXPECT_EQ(tile.wall, (PixelRect{1958, 1112, 1920, 1080}));
    EXPECT_EQ(tile.viewport, (PixelRect{-1958, -1112, 5836, 2192}));
    EXPECT_EQ(tile.drawn, (PixelRect{0, 0, 1920, 1080}));
}

TEST(WallGuideTest, TheDescriptionsOfTheGuideAreRight)
{
    const std::vector<std::string> descriptions = blocksOf("Cluster");
    ASSERT_EQ(descriptions.size(), 2u);
    const WallLayout onEnd = layoutOf(descriptions[0]);
    EXPECT_EQ(onEnd.width, 1112 + 1080) << "1080 * 1.03 = 1112.4";
    EXPECT_EQ(onEnd.height, 1920);
    EXPECT_EQ(layoutOf(descriptions[1]).tiles.at(1).host, "reef-right");

    const std::vector<std::string> settings = blocksOf("Wall");
    ASSERT_EQ(settings.size(), 1u);
    const WallLayout wall = layoutOf(descriptions[0], settings[0]);
    EXPECT_EQ(wall.tiles.at(0).display, ":0.1");
    EXPECT_EQ(wall.tiles.at(1).place, (PixelRect{1940, 180, 1280, 720}));
}

} // namespace
