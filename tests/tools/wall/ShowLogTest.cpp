#include "ShowLog.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using wall::ShowFrame;
using wall::ShowHead;
using wall::ShowReader;
using wall::ShowWriter;

const std::string DESCRIPTION = "Cluster TileMap 2 1 Mullions 0.5 0 Nodes 1\n"
                                "Node Hostname reef Windows 2\n"
                                "Map 0 0 Location 0 0 100 80 Cameras 0\n"
                                "Map 1 0 Location 100 0 100 80 Cameras 0\n";

class ShowLogTest : public testing::Test {
protected:
    TempDirectory folder;
    ShowHead head;

    ShowLogTest()
    {
        head.version = "1.2.3";
        head.media = 0x0123456789abcdef;
        head.simulated = 0.5;
        head.fit = Fit::cover;
        head.seed = 4000000000U;
        head.files.name = "reef.cfg";
        head.files.description = DESCRIPTION;
        head.files.hasMore = true;
        head.files.more = "Wall Rate 25";
    }

    void write(const std::vector<ShowFrame>& frames) const
    {
        ShowWriter writer("show.log", head);
        for (const ShowFrame& frame : frames) {
            writer.add(frame);
        }
    }

    static std::string text()
    {
        std::ostringstream all;
        all << std::ifstream("show.log").rdbuf();
        return all.str();
    }

    /// What is said of the log with another text instead of one of its own.
    static std::string complaint(const std::string& own, const std::string& other)
    {
        std::string changed = text();
        const std::size_t at = changed.find(own);
        EXPECT_NE(at, std::string::npos);
        TempDirectory::write("changed.log", changed.replace(at, own.size(), other));
        return errorOf([] {
            ShowReader reader("changed.log");
            while (reader.next()) {
            }
        });
    }
};

} // namespace

TEST_F(ShowLogTest, WhatWasWrittenIsReadAgain)
{
    write({{1, 0, 17, std::nullopt, {}},
           {2, 3, 0xffffffffffffffff, 8U, {{19, -5, 200, 118, -1}, {5, 1, 2, 3, 0}}}});
    ShowReader reader("show.log");
    EXPECT_EQ(reader.head().version, "1.2.3");
    EXPECT_EQ(reader.head().media, head.media);
    EXPECT_EQ(reader.head().seed, head.seed);
    EXPECT_EQ(reader.head().files.description, DESCRIPTION);
    EXPECT_EQ(reader.head().files.more, head.files.more);
    EXPECT_EQ(reader.layout().rate, 25);
    EXPECT_EQ(reader.layout().fit, Fit::cover);
    // Half of two tiles of 100 with a gap of 50 between them.
    EXPECT_EQ(reader.layout().width, 125);
    EXPECT_EQ(reader.layout().height, 40);

    const auto first = reader.next();
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->step, 0);
    EXPECT_EQ(first->state, 17u);
    EXPECT_FALSE(first->anew.has_value());
    EXPECT_THAT(first->inputs, IsEmpty());
    const auto second = reader.next();
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(second->state, 0xffffffffffffffff);
    EXPECT_EQ(second->anew, 8U);
    ASSERT_EQ(second->inputs.size(), 2u);
    EXPECT_EQ(second->inputs[0], (wall::InputEvent{19, -5, 200, 118, -1}));
    EXPECT_FALSE(reader.next().has_value());
}

TEST_F(ShowLogTest, PlacesOfFiguresAreReadAgainToTheBit)
{
    const auto third = static_cast<double>(1.0F / 3);
    write({{1, 0, 17, std::nullopt, {}, Poses()},
           {2, 3, 18, 8U, {{19, 1, 2, 3, -1}}, Poses{Place{third, -0.5}, {}, Place{1e-30F, 1}}},
           {3, 5, 19, std::nullopt, {}}});
    ShowReader reader("show.log");
    EXPECT_EQ(reader.next()->poses, Poses());
    const auto led = reader.next();
    ASSERT_TRUE(led->poses.has_value());
    EXPECT_EQ((*led->poses)[0], (Place{third, -0.5}));
    EXPECT_EQ((*led->poses)[1], std::nullopt);
    EXPECT_EQ((*led->poses)[2], (Place{static_cast<double>(1e-30F), 1}));
    EXPECT_EQ(led->inputs.size(), 1U);
    EXPECT_FALSE(reader.next()->poses.has_value());
    for (const char* bad : {" figure 0 0 0", " figure 4 0 0", " figure 1 nan 0", " figure 1 0",
                            " figure 1 0 2000", " figure 1 x 0"}) {
        EXPECT_THAT(complaint(" figure 3 1e-30 1", bad), HasSubstr("the frame after")) << bad;
    }
    EXPECT_THAT(complaint(" steered figure 1", " figure 1"), HasSubstr("the frame after"));
}

TEST_F(ShowLogTest, TheScaleIsReadAgainToTheBit)
{
    head.simulated = 1.0 / 3;
    write({});
    EXPECT_EQ(ShowReader("show.log").head().simulated, 1.0 / 3);
}

TEST_F(ShowLogTest, AllEventsOfTheLargestWallAreOneFrame)
{
    constexpr std::size_t MOST = 1024 * wall::FrameRecord::EVENTS;
    constexpr int KEY = -2147483647; // no number is longer
    write({{1, 0, 17, 4000000000U,
            std::vector(MOST, wall::InputEvent{KEY, -4194304, -4194304, KEY, KEY})}});
    EXPECT_EQ(ShowReader("show.log").next()->inputs.size(), MOST);
}

TEST_F(ShowLogTest, ALineThatBreaksOffIsTheEnd)
{
    write({{1, 0, 17, std::nullopt, {}}, {2, 3, 18, std::nullopt, {}}});
    std::string all = text();
    TempDirectory::write("show.log", all.substr(0, all.size() - 5));
    ShowReader reader("show.log");
    EXPECT_TRUE(reader.next().has_value());
    EXPECT_FALSE(reader.next().has_value());
}

TEST_F(ShowLogTest, DamageIsSaid)
{
    write({{1, 0, 17, std::nullopt, {}}, {2, 3, 18, 5U, {{19, 1, 2, 3, 4}}}});
    EXPECT_EQ(complaint("wall log 1", "wall log 2"), "changed.log: is no log of kelpix-wall");
    EXPECT_EQ(complaint("media 0123", "media x123"), "changed.log: media is damaged");
    EXPECT_EQ(complaint("simulated 0.5", "simulated -1"), "changed.log: simulated is damaged");
    EXPECT_EQ(complaint("fit cover", "fit fill"), "changed.log: fit is damaged");
    EXPECT_EQ(complaint("seed 4", "seed -4"), "changed.log: seed is damaged");
    EXPECT_EQ(complaint("seed", "sead"), "changed.log: \"seed\" is missing");
    EXPECT_EQ(complaint("description 1", "description 9"), "changed.log: it breaks off");
    EXPECT_EQ(complaint("description 1", "description 99999999"),
              "changed.log: description is damaged");
    EXPECT_EQ(complaint("more 12", "more 11"), "changed.log: it breaks off");
    EXPECT_THAT(complaint("TileMap 2 1", "TileMap 1 1"), HasSubstr("reef.cfg"));
    const std::string second = "changed.log: the frame after 1 is damaged";
    EXPECT_EQ(complaint("\n2 3 ", "\n3 3 "), second);
    EXPECT_EQ(complaint("\n2 3 0", "\n2 3 "), second);
    EXPECT_EQ(complaint("anew 5", "anew x"), second);
    EXPECT_EQ(complaint("19 1 2 3 4", "19 1 2 3"), second);
    EXPECT_EQ(complaint("19 1 2", "19 -2147483648 2"), second);
    EXPECT_EQ(complaint("19 1 2", "19 1 2147483647"), second);
    EXPECT_EQ(complaint("event", "events"), second);
    EXPECT_EQ(complaint("event", std::string(1100000, ' ')), "changed.log: a line is too long");
}

TEST_F(ShowLogTest, WhatCannotBeOpenedIsSaid)
{
    EXPECT_EQ(errorOf([] { ShowReader("missing.log"); }), "cannot read missing.log");
    EXPECT_EQ(errorOf([this] { ShowWriter("no/show.log", head); }),
              "cannot write no/show.log: No such file or directory");
    EXPECT_EQ(errorOf([this] { ShowWriter("/dev/full", head); }),
              "cannot write /dev/full: No space left on device");
}
