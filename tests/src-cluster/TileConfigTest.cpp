#include "TileConfig.h"

#include "EarlyExit.h"
#include "TempDirectory.h"

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>

namespace {

/// The name that this machine pretends to have; empty = its own.
std::string pretendedName;

} // namespace

extern "C" int gethostname(char* name, std::size_t size) noexcept
{
    if (pretendedName.empty()) {
        using Function = int(char*, std::size_t);
        return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "gethostname"))(name, size);
    }
    // Too long a name is cut without a terminator and reported.
    const std::size_t length = pretendedName.size() + 1;
    std::memcpy(name, pretendedName.c_str(), std::min(length, size));
    return length > size ? -1 : 0;
}

namespace {

static_assert(!std::is_polymorphic_v<TileConfig> && !std::is_polymorphic_v<Cluster>);
static_assert(std::is_same_v<decltype(Cluster::nList), std::vector<ClusterNode*>>);
static_assert(std::is_same_v<decltype(ClusterNode::hostname), char[32]>);
static_assert(std::is_same_v<decltype(WindowEntity::cList), std::vector<CameraEntity*>>);

using testing::ElementsAre;
using testing::ExitedWithCode;

/// A wall of two hosts; the second has two windows, the second of which has two cameras.
const char WALL[] = "Cluster\n"
                    "TileMap 3 2\n"
                    "Mullions 0.5 -1.25\n"
                    "Nodes 2\n"
                    "Node\n"
                    "Hostname left\n"
                    "Windows 1\n"
                    "Map 0 1\n"
                    "Location 1 2 3 4\n"
                    "Cameras 1\n"
                    "Rectangle 0.1 0.2 0.3 0.4\n"
                    "Offset 0.5 0.6\n"
                    "Node\n"
                    "Hostname right\n"
                    "Windows 2\n"
                    "Map 1 0\n"
                    "Location -10 20 300 400\n"
                    "Cameras 0\n"
                    "Map 2 1\n"
                    "Location 5 6 7 8\n"
                    "Cameras 2\n"
                    "Rectangle 1 2 3 4\n"
                    "Offset 5 6\n"
                    "Rectangle 7 8 9 10\n"
                    "Offset 11 12\n";

/// A wall of the given hosts, without windows.
std::string hosts(const std::vector<std::string>& names)
{
    std::string text = "Cluster TileMap 1 1 Mullions 0 0 Nodes " + std::to_string(names.size());
    for (const std::string& name : names) {
        text += "\nNode Hostname " + name + " Windows 0";
    }
    return text;
}

class TileConfigTest : public testing::Test {
protected:
    TempDirectory directory;
    TileConfig config;
    std::string output;

    void TearDown() override { pretendedName.clear(); }

    int read(const std::string& text)
    {
        TempDirectory::write("wall.cfg", text);
        return readFile("wall.cfg");
    }

    int readFile(const char* path)
    {
        testing::internal::CaptureStdout();
        const int result = config.readDisplayCfg(path);
        output = testing::internal::GetCapturedStdout();
        return result;
    }

    std::vector<std::string> hostNames() const
    {
        std::vector<std::string> names;
        for (const ClusterNode* node : config.cluster->nList) {
            names.emplace_back(node->hostname);
        }
        return names;
    }
};

TEST_F(TileConfigTest, ANewConfigurationIsEmpty)
{
    EXPECT_EQ(config.cluster, nullptr);
    EXPECT_EQ(config.thisNode, nullptr);
    EXPECT_EQ(config.getThisNodeCfg(), nullptr);
}

TEST_F(TileConfigTest, AWholeWallIsRead)
{
    pretendedName = "right";
    ASSERT_EQ(read(WALL), 0);
    EXPECT_EQ(output, "This node's hostname: right\ncfg for right identified!\n");
    const Cluster& wall = *config.cluster;
    EXPECT_THAT(wall.tilemap, ElementsAre(3, 2));
    EXPECT_THAT(wall.mullions, ElementsAre(0.5f, -1.25f));
    EXPECT_THAT(hostNames(), ElementsAre("left", "right"));

    ASSERT_EQ(wall.nList[0]->wList.size(), 1u);
    const WindowEntity& left = *wall.nList[0]->wList[0];
    EXPECT_THAT(left.mapping, ElementsAre(0, 1));
    EXPECT_THAT(left.location, ElementsAre(1, 2, 3, 4));
    ASSERT_EQ(left.cList.size(), 1u);
    EXPECT_THAT(left.cList[0]->rectangle, ElementsAre(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_THAT(left.cList[0]->offset, ElementsAre(0.5f, 0.6f));

    EXPECT_EQ(config.getThisNodeCfg(), wall.nList[1]);
    EXPECT_EQ(config.thisNode, wall.nList[1]);
    const std::vector<WindowEntity*>& right = config.thisNode->wList;
    ASSERT_EQ(right.size(), 2u);
    EXPECT_THAT(right[0]->mapping, ElementsAre(1, 0));
    EXPECT_THAT(right[0]->location, ElementsAre(-10, 20, 300, 400));
    EXPECT_TRUE(right[0]->cList.empty());
    EXPECT_THAT(right[1]->location, ElementsAre(5, 6, 7, 8));
    ASSERT_EQ(right[1]->cList.size(), 2u);
    EXPECT_THAT(right[1]->cList[0]->rectangle, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(right[1]->cList[1]->rectangle, ElementsAre(7, 8, 9, 10));
    EXPECT_THAT(right[1]->cList[1]->offset, ElementsAre(11, 12));
}

TEST_F(TileConfigTest, LineBreaksMeanNothing)
{
    pretendedName = "right";
    std::string text = std::string("\n\n ") + WALL;
    std::ranges::replace(text, '\n', '\t');
    EXPECT_EQ(read(text), 0);
    EXPECT_THAT(hostNames(), ElementsAre("left", "right"));
    std::ranges::replace(text, ' ', '\v');
    std::ranges::replace(text, '\t', '\r');
    EXPECT_EQ(read(text), 0);
    EXPECT_THAT(hostNames(), ElementsAre("left", "right"));
}

TEST_F(TileConfigTest, TheMachinesOwnNameIsLookedUp)
{
    char name[256] = {};
    ASSERT_EQ(gethostname(name, sizeof name), 0);
    const std::string cut = std::string(name).substr(0, 31);
    ASSERT_EQ(read(hosts({"elsewhere", name})), 0);
    EXPECT_EQ(output, "This node's hostname: " + cut + "\ncfg for " + cut + " identified!\n");
    EXPECT_EQ(config.thisNode, config.cluster->nList[1]);
}

TEST_F(TileConfigTest, TheFirstOfTwoHostsWithOneNameIsTaken)
{
    pretendedName = "twin";
    ASSERT_EQ(read(hosts({"other", "twin", "twin"})), 0);
    EXPECT_EQ(config.thisNode, config.cluster->nList[1]);
}

TEST_F(TileConfigTest, HostNamesMatchExactly)
{
    pretendedName = "host1";
    ASSERT_EQ(read(hosts({"host", "host12", "HOST1", "host1"})), 0);
    EXPECT_EQ(config.thisNode, config.cluster->nList[3]);
}

TEST_F(TileConfigTest, LongHostNamesAreCutOnBothSides)
{
    pretendedName = std::string(31, 'n') + "-and-more-of-it";
    ASSERT_EQ(read(hosts({std::string(30, 'n'), std::string(100000, 'n')})), 0);
    EXPECT_THAT(hostNames(), ElementsAre(std::string(30, 'n'), std::string(31, 'n')));
    EXPECT_EQ(config.thisNode, config.cluster->nList[1]);
    EXPECT_EQ(output, "This node's hostname: " + std::string(31, 'n') + "\ncfg for " +
                          std::string(31, 'n') + " identified!\n");
}

TEST_F(TileConfigTest, NumbersThatCannotBeReadLeaveTheirFields)
{
    pretendedName = "h";
    ASSERT_EQ(read("Cluster TileMap 7 Mullions 1 2 Nodes 1 Node Hostname h Windows 2\n"
                   "Map 5 Location 1 2 Cameras 1 Rectangle 0.5 Offset\n"
                   "Map Location Cameras none"),
              0);
    EXPECT_THAT(config.cluster->tilemap, ElementsAre(7, 0));
    ASSERT_EQ(config.thisNode->wList.size(), 2u);
    const WindowEntity& window = *config.thisNode->wList[0];
    EXPECT_THAT(window.mapping, ElementsAre(5, 0));
    EXPECT_THAT(window.location, ElementsAre(1, 2, 0, 0));
    EXPECT_THAT(window.cList[0]->rectangle, ElementsAre(0.5f, 0, 0, 0));
    EXPECT_THAT(window.cList[0]->offset, ElementsAre(0, 0));
    EXPECT_TRUE(config.thisNode->wList[1]->cList.empty());
}

TEST_F(TileConfigTest, ACountThatCannotBeReadIsZeroAndItsWordStays)
{
    pretendedName = "h";
    ASSERT_EQ(read("Cluster TileMap 1 1 Mullions 0 0 Nodes 1 Node Hostname h Windows none"), 0);
    EXPECT_THAT(hostNames(), ElementsAre("h"));
    EXPECT_TRUE(config.thisNode->wList.empty());

    EXPECT_EQ(read("Cluster TileMap 1 1 Mullions 0 0 Nodes 2\n"
                   "Node Hostname h Windows none\n"
                   "Node Hostname other Windows 0"),
              -1)
        << "\"none\" stands before \"Node\"";
    EXPECT_THAT(hostNames(), ElementsAre("h"));
}

TEST_F(TileConfigTest, NegativeCountsMeanNone)
{
    pretendedName = "h";
    ASSERT_EQ(read("Cluster TileMap 1 1 Mullions 0 0 Nodes 2\n"
                   "Node Hostname a Windows -1\n"
                   "Node Hostname h Windows 1 Map 0 0 Location 0 0 0 0 Cameras -2147483648"),
              0);
    EXPECT_TRUE(config.cluster->nList[0]->wList.empty());
    EXPECT_TRUE(config.thisNode->wList[0]->cList.empty());
}

TEST_F(TileConfigTest, EveryKeywordMustStandAsItIs)
{
    pretendedName = "right";
    std::vector<std::string> keywords = {"Cluster",  "TileMap",  "Mullions",  "Nodes",
                                         "Node",     "Hostname", "Windows",   "Map",
                                         "Location", "Cameras",  "Rectangle", "Offset"};
    for (const std::string& keyword : keywords) {
        for (std::size_t at = std::string(WALL).find(keyword + (keyword == "Node" ? "\n" : ""));
             at != std::string::npos;
             at = std::string(WALL).find(keyword + (keyword == "Node" ? "\n" : ""), at + 1)) {
            std::string text = WALL;
            text[at] = static_cast<char>(std::tolower(text[at]));
            EXPECT_EQ(read(text), -1) << text;
            EXPECT_EQ(output, "");
            text = WALL;
            text.insert(at + keyword.size(), std::string(100000, 'x'));
            EXPECT_EQ(read(text), -1) << keyword;
            text = WALL;
            text.erase(at, keyword.size());
            EXPECT_EQ(read(text), -1) << text;
            EXPECT_EQ(output, "");
        }
    }
    EXPECT_EQ(config.thisNode, nullptr);
}

TEST_F(TileConfigTest, AFileThatEndsBeforeItsLastNumbersIsNoWall)
{
    pretendedName = "left";
    const std::string text = WALL;
    const std::size_t end = text.rfind("Offset") + 7;
    for (std::size_t size = 0; size <= end; ++size) {
        const std::string part = text.substr(0, size);
        ASSERT_EQ(read(part), -1) << part;
    }
}

TEST_F(TileConfigTest, HugeCountsEndWithTheFile)
{
    pretendedName = "h";
    const std::string wall = "Cluster TileMap 1 1 Mullions 0 0 Nodes ";
    EXPECT_EQ(read(wall + "2147483647"), -1);
    EXPECT_EQ(read(wall + "1 Node Hostname h Windows 2147483647"), -1);
    EXPECT_EQ(read(wall + "1 Node Hostname h Windows 1 Map 0 0 Location 0 0 0 0 "
                          "Cameras 2147483647 Rectangle 0 0 0 0 Offset 0 0"),
              -1);
}

TEST_F(TileConfigTest, AFormatErrorKeepsTheHostsThatWereComplete)
{
    pretendedName = "left";
    ASSERT_EQ(read(hosts({"left"})), 0);
    const ClusterNode* const before = config.thisNode;
    std::string text = WALL;
    text.replace(text.rfind("Offset"), 6, "offset");
    EXPECT_EQ(read(text), -1);
    EXPECT_THAT(config.cluster->tilemap, ElementsAre(3, 2));
    EXPECT_THAT(hostNames(), ElementsAre("left"));
    EXPECT_EQ(config.thisNode, before) << "nobody looked for this host";
}

TEST_F(TileConfigTest, WhatIsNoWallChangesNothing)
{
    pretendedName = "left";
    ASSERT_EQ(read(WALL), 0);
    const Cluster* const before = config.cluster;
    const ClusterNode* const node = config.thisNode;
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"missing.cfg", "", "pipe", "/dev/zero", "/"}) {
        EXPECT_EQ(readFile(path), -1) << path;
    }
    EXPECT_EQ(readFile(nullptr), -1);
    EXPECT_EQ(read(""), -1);
    EXPECT_EQ(read("cluster"), -1);
    EXPECT_EQ(config.cluster, before);
    EXPECT_EQ(config.thisNode, node);
}

TEST_F(TileConfigTest, AnotherReadReplacesTheClusterAndKeepsItsRecords)
{
    pretendedName = "right";
    ASSERT_EQ(read(WALL), 0);
    const ClusterNode* const first = config.getThisNodeCfg();
    ASSERT_EQ(read(hosts({"a", "b", "right"})), 0);
    EXPECT_NE(config.getThisNodeCfg(), first);
    EXPECT_EQ(config.cluster->nList.size(), 3u);
    EXPECT_STREQ(first->hostname, "right");
    EXPECT_THAT(first->wList[1]->cList[1]->offset, ElementsAre(11, 12));
}

TEST_F(TileConfigTest, RecordsOutliveTheirReader)
{
    pretendedName = "right";
    auto other = std::make_unique<TileConfig>();
    TempDirectory::write("wall.cfg", WALL);
    testing::internal::CaptureStdout();
    other->readDisplayCfg("wall.cfg");
    testing::internal::GetCapturedStdout();
    const ClusterNode* const node = other->getThisNodeCfg();
    other.reset();
    EXPECT_THAT(node->wList[1]->location, ElementsAre(5, 6, 7, 8));
}

TEST_F(TileConfigTest, DamageAfterACompleteHostIsHarmless)
{
    pretendedName = "left";
    const std::size_t start = std::string(WALL).rfind("Node\n");
    std::mt19937 random(1);
    for (int n = 0; n < 500; ++n) {
        std::string text = WALL;
        for (int k = 0; k < 3; ++k) {
            text[start + random() % (text.size() - start)] = static_cast<char>(random());
        }
        text.resize(text.size() - random() % 10);
        ASSERT_THAT(read(text), testing::AnyOf(0, -1)) << text;
        ASSERT_EQ(hostNames().at(0), "left");
    }
}

using TileConfigDeathTest = TileConfigTest;

/// In the child process, standard output is standard error: death tests look at the latter.
void readAloud(const char* path)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    TileConfig config;
    config.readDisplayCfg(path);
    std::fputs("still running\n", stderr);
}

/// Reads a wall with this host, then one without it.
void readBothAloud()
{
    TileConfig config;
    testing::internal::CaptureStdout();
    config.readDisplayCfg("wall.cfg");
    testing::internal::GetCapturedStdout();
    dup2(STDERR_FILENO, STDOUT_FILENO);
    config.readDisplayCfg("other.cfg");
    std::fputs("still running\n", stderr);
}

TEST_F(TileConfigDeathTest, AWallWithoutThisHostEndsTheProcess)
{
    pretendedName = "here";
    const std::string messages = "^This node's hostname: here\nNo information for this node!\n$";
    for (const std::vector<std::string>& names :
         {std::vector<std::string>{}, {"there"}, {"her", "heres"}}) {
        TempDirectory::write("wall.cfg", hosts(names));
        EXPECT_EXIT(readAloud("wall.cfg"), ExitedWithCode(0), messages);
    }
    for (const std::string count : {"none", "-1", "-2147483648"}) {
        TempDirectory::write("wall.cfg", "Cluster TileMap 1 1 Mullions 0 0 Nodes " + count);
        EXPECT_EXIT(readAloud("wall.cfg"), ExitedWithCode(0), messages) << count;
    }
    TempDirectory::write("wall.cfg", hosts({"here"}));
    TempDirectory::write("other.cfg", hosts({"there"}));
    EXPECT_EXIT(readBothAloud(), ExitedWithCode(0), messages);
}

TEST_F(TileConfigDeathTest, WithoutAClusterNoHostIsFound)
{
    pretendedName = "here";
    const auto look = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        TileConfig config;
        config.cfgNode();
    };
    EXPECT_EXIT(look(), ExitedWithCode(0),
                "^This node's hostname: here\nNo information for this node!\n$");
}

} // namespace
