#include "TileDescription.h"

#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;

/// A wall of two hosts; the second has two windows, the first of which has no camera.
const std::string WALL = "Cluster\n"             // line 1
                         "TileMap 3 2\n"         // 2
                         "Mullions 0.5 -1.25\n"  // 3
                         "Nodes 2\n"             // 4
                         "\n"                    // 5
                         "Node\n"                // 6
                         "Hostname left\n"       // 7
                         "Windows 1\n"           // 8
                         "Map 0 1\n"             // 9
                         "Location 1 2 3 4\n"    // 10
                         "Cameras 1\n"           // 11
                         "Rectangle 0 0.2 1 1\n" // 12
                         "Offset 0.5 0.6\n"      // 13
                         "Node\n"                // 14
                         "Hostname right\n"      // 15
                         "Windows 2\n"           // 16
                         "Map 1 0 Location -10 20 300 400 Cameras 0\n"
                         "Map 2\n" // 18
                         "1\n"
                         "Location 5 6 7 8\n" // 20
                         "Cameras 1\n"
                         "Rectangle 1 2 3 4\n" // 22
                         "Offset 5 +6e0\n";

/// The wall with one text in place of another, which stands in it.
std::string with(const std::string& old, const std::string& text)
{
    std::string result = WALL;
    return result.replace(result.find(old), old.size(), text);
}

/// The message about a description; "" = there is none.
std::string problemOf(const std::string& bytes)
{
    TileDescription description;
    const auto problem = description.parse(bytes, "wall.cfg");
    return problem ? problem->text() : "";
}

TEST(TileDescriptionTest, AWholeWallIsReadWithItsLines)
{
    TileDescription description;
    const auto problem = description.parse(WALL, "wall.cfg");
    ASSERT_FALSE(problem) << problem->text();
    const Cluster& wall = description.cluster;
    EXPECT_THAT(wall.tilemap, ElementsAre(3, 2));
    EXPECT_THAT(wall.mullions, ElementsAre(0.5f, -1.25f));
    ASSERT_EQ(wall.nList.size(), 2u);
    EXPECT_STREQ(wall.nList[0]->hostname, "left");
    ASSERT_EQ(wall.nList[0]->wList.size(), 1u);
    const WindowEntity& left = *wall.nList[0]->wList[0];
    EXPECT_THAT(left.mapping, ElementsAre(0, 1));
    EXPECT_THAT(left.location, ElementsAre(1, 2, 3, 4));
    ASSERT_EQ(left.cList.size(), 1u);
    EXPECT_THAT(left.cList[0]->rectangle, ElementsAre(0.0f, 0.2f, 1.0f, 1.0f));
    EXPECT_THAT(left.cList[0]->offset, ElementsAre(0.5f, 0.6f));
    ASSERT_EQ(wall.nList[1]->wList.size(), 2u);
    EXPECT_THAT(wall.nList[1]->wList[0]->location, ElementsAre(-10, 20, 300, 400));
    EXPECT_TRUE(wall.nList[1]->wList[0]->cList.empty());
    EXPECT_THAT(wall.nList[1]->wList[1]->mapping, ElementsAre(2, 1));
    EXPECT_THAT(wall.nList[1]->wList[1]->cList[0]->offset, ElementsAre(5, 6));

    EXPECT_EQ(description.lineOf(0), 9);
    EXPECT_EQ(description.lineOf(1), 17);
    EXPECT_EQ(description.lineOf(2), 19);
    EXPECT_EQ(description.lineOf(3), 0);
}

TEST(TileDescriptionTest, EachProblemHasItsLine)
{
    for (const auto& [bytes, message] : std::vector<std::pair<std::string, std::string>>{
             {"", "1: the file ends where \"Cluster\" is expected"},
             {"\n\ncluster", "3: \"cluster\" stands where \"Cluster\" is expected"},
             {with("TileMap", "Tilemap"), "2: \"Tilemap\" stands where \"TileMap\" is expected"},
             {with("-1.25", "wide"), "3: \"wide\" after Mullions is no number, or a too large one"},
             {with("-1.25", "1e99"), "3: \"1e99\" after Mullions is no number, or a too large one"},
             {with("3 2", "3.5 2"),
              "2: \"3.5\" after TileMap is no whole number, or a too large one"},
             {with("3 2", "3 2147483648"),
              "2: \"2147483648\" after TileMap is no whole number, or a too large one"},
             {with("Mullions 0.5 -1.25", "Mullions 0.5"),
              "4: \"Nodes\" after Mullions is no number, or a too large one"},
             {with("Nodes 2", "Nodes -1"), "4: Nodes -1 is no count"},
             {with("Windows 1", "Windows many"),
              "8: \"many\" after Windows is no whole number, or a too large one"},
             {with("Cameras 0", "Cameras -5"), "17: Cameras -5 is no count"},
             {with("Nodes 2", "Nodes 3"), "23: the file ends where \"Node\" is expected"},
             {with("Nodes 2", "Nodes 1"),
              "14: \"Node\" stands after the last of the 1 hosts that Nodes counts"},
             {with("Windows 1", "Windows 2"), "14: \"Node\" stands where \"Map\" is expected"},
             {WALL.substr(0, WALL.find("left")), "7: the file ends where a host name is expected"},
             {WALL.substr(0, WALL.find("400")),
              "17: the file ends where a whole number after Location is expected"},
             {with("right", "r\x1b[2J"), ""},
             {with("Map 2", "Map\x1b"), "18: \"Map\\x1b\" stands where \"Map\" is expected"},
             {with("Map 2", std::string("Map 2\0", 6)), "18: there is a NUL character: no text"},
         }) {
        EXPECT_EQ(problemOf(bytes), message.empty() ? "" : "wall.cfg:" + message) << bytes;
    }
}

TEST(TileDescriptionTest, AHostNameHasToFit)
{
    EXPECT_EQ(problemOf(with("left", std::string(31, 'n'))), "");
    const std::string cut(32, 'n');
    for (const std::size_t length : {32, 100000}) {
        EXPECT_EQ(problemOf(with("left", std::string(length, 'n'))),
                  "wall.cfg:7: the host name that starts with \"" + cut +
                      "\" is longer than 31 characters");
    }
}

TEST(TileDescriptionTest, ANumberOfManyDigitsIsNotCut)
{
    EXPECT_EQ(problemOf(with("Map 0 1", "Map 0 " + std::string(61, '0') + "1")), "");
    EXPECT_EQ(problemOf(with("Map 0 1", "Map 0 " + std::string(62, '0') + "1")),
              "wall.cfg:9: \"" + std::string(62, '0') +
                  "1\" after Map is no whole number, or a too large one");
}

TEST(TileDescriptionTest, APartOfAFileIsNoDescription)
{
    for (std::size_t size = 0; size < WALL.find("+6e0"); ++size) {
        TileDescription description;
        ASSERT_TRUE(description.parse(WALL.substr(0, size), "wall.cfg")) << size;
        ASSERT_LE(description.cluster.nList.size(), 1u);
    }
}

TEST(TileDescriptionTest, ANewTextReplacesTheOldOne)
{
    TileDescription description;
    ASSERT_FALSE(description.parse(WALL, "wall.cfg"));
    EXPECT_TRUE(description.parse("Cluster TileMap 1 1", "wall.cfg"));
    EXPECT_TRUE(description.cluster.nList.empty());
    EXPECT_EQ(description.lineOf(0), 0);
    EXPECT_EQ(description.cluster.mullions[0], 0);
}

TEST(TileDescriptionTest, RecordsMoveWithTheirOwner)
{
    TileDescription first;
    ASSERT_FALSE(first.parse(WALL, "wall.cfg"));
    TileDescription second = std::move(first);
    first = TileDescription();
    EXPECT_STREQ(second.cluster.nList[1]->hostname, "right");
    EXPECT_THAT(second.cluster.nList[1]->wList[1]->location, ElementsAre(5, 6, 7, 8));
}

TEST(TileDescriptionTest, TheNameOfTheFileIsPrintable)
{
    const TileProblem problem{"wall\x1b.cfg", 0, "cannot be read"};
    EXPECT_EQ(problem.text(), "wall\\x1b.cfg: cannot be read");
}

} // namespace
