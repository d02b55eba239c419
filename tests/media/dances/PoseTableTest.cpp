#include "PoseTable.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using media::Point;
using media::Stations;
using testing::ElementsAre;
using testing::IsEmpty;

auto isStation(double seconds, float x, float y)
{
    using media::Station;
    return testing::AllOf(
        testing::Field(&Station::seconds, seconds),
        testing::Field(&Station::place,
                       testing::AllOf(testing::Field(&Point::x, x), testing::Field(&Point::y, y))));
}

class PoseTableTest : public testing::Test {
protected:
    TempDirectory folder;

    static Stations read(const std::string& text)
    {
        TempDirectory::write("table.txt", text);
        return media::readPoseTable("table.txt");
    }

    /// The message that refuses a table.
    static std::string refusal(const std::string& text)
    {
        return errorOf([&] { read(text); });
    }
};

TEST_F(PoseTableTest, HoldsTheStationsOfEachFigureInAnyOrderOfFigures)
{
    const Stations stations =
        read("# a dance\n\n 3 2 home\r\n8\t0 0.7 -0.5#up\n3.5 2 -1 2\n9 0 home");
    EXPECT_THAT(stations[0], ElementsAre(isStation(8, 0.7f, -0.5f), isStation(9, 0.6f, -0.1f)));
    EXPECT_THAT(stations[1], IsEmpty());
    EXPECT_THAT(stations[2], ElementsAre(isStation(3, 0.5f, -0.1f), isStation(3.5, -1, 2)));
    EXPECT_EQ(media::endOf(stations), 9);
}

TEST_F(PoseTableTest, RefusesALineThatMakesNoSenseWithItsNumber)
{
    const std::string form = "table.txt:2: a line is TIME FIGURE X Y or TIME FIGURE home, such as "
                             "\"8 0 0.70 0.50\"";
    for (const char* line : {"5", "5 0", "5 0 0.5", "5 0 0.5 0.5 0", "5 0 Home"}) {
        EXPECT_EQ(refusal("1 0 home\n" + std::string(line) + "\n"), form) << line;
    }
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"x 0 home", "the time is a number of seconds from 0 to 3600, such as 12.5, not \"x\""},
        {"-1 0 home", "the time is a number of seconds from 0 to 3600, such as 12.5, not \"-1\""},
        {"3601 0 home",
         "the time is a number of seconds from 0 to 3600, such as 12.5, not \"3601\""},
        {"nan 0 home", "the time is a number of seconds from 0 to 3600, such as 12.5, not \"nan\""},
        {"5 3 home", "the figure is 0, 1 or 2, not \"3\""},
        {"5 0.0 home", "the figure is 0, 1 or 2, not \"0.0\""},
        {"5 0 0,7 0.5", "x is a number from -1 to 2, and the picture is 0 to 1, not \"0,7\""},
        {"5 0 0.5 home", "y is a number from -1 to 2, and the picture is 0 to 1, not \"home\""},
        {"5 0 0.5 2.1", "y is a number from -1 to 2, and the picture is 0 to 1, not \"2.1\""},
        {"1.0 0 home", "the time 1.0 is not after 1, that of the line before of figure 0"},
        {std::string(201, '#'), "the line is longer than 200 characters"},
    };
    for (const auto& [line, message] : lines) {
        EXPECT_EQ(refusal("1 0 home\n" + line + "\n"), "table.txt:2: " + message);
    }
    EXPECT_EQ(read("1 0 home\n1 1 home\n" + std::string(200, '#'))[1].size(), 1U);
}

TEST_F(PoseTableTest, RefusesWhatIsNoTable)
{
    EXPECT_EQ(errorOf([] { media::readPoseTable("missing"); }),
              "cannot read missing: not a file, or closed to you");
    EXPECT_EQ(errorOf([] { media::readPoseTable("."); }),
              "cannot read .: not a file, or closed to you");
    EXPECT_THAT(refusal(""), testing::StartsWith("table.txt: no line leads a figure anywhere"));
    EXPECT_THAT(refusal("0 0 home"), testing::StartsWith("table.txt: no line leads a figure"));
    EXPECT_EQ(refusal(std::string(100001, '\n')),
              "table.txt:100001: there are more than 100000 lines");
}

TEST(PosesTest, FiguresStartAndArriveSoftly)
{
    Stations stations;
    stations[1] = {{1, {0.55f, -0.1f}}, {3, {0.95f, 0.7f}}};
    const auto poses = media::posesThrough(stations, 4);
    ASSERT_EQ(poses.size(), 361U);
    const auto expect = [&](std::size_t record, float x, float y) {
        EXPECT_FLOAT_EQ(poses[record][1].x, x) << record;
        EXPECT_FLOAT_EQ(poses[record][1].y, y) << record;
    };
    expect(0, 0.55f, -0.1f);
    expect(90, 0.55f, -0.1f);
    // After a quarter of the time 3/16 - 2/64 = 5/32 of the way, after half of it half.
    expect(135, 0.55f + 0.4f * 5 / 32, -0.1f + 0.8f * 5 / 32);
    expect(180, 0.75f, 0.3f);
    expect(270, 0.95f, 0.7f);
    expect(360, 0.95f, 0.7f);
    EXPECT_EQ(poses[180][0].x, 0.6f) << "a figure without stations stays at home";
    EXPECT_EQ(poses[180][2].y, -0.1f);
}

TEST(PosesTest, TheLastRecordIsAtTheEndOrJustAfterIt)
{
    EXPECT_EQ(media::recordsOf(120), 10801U);
    EXPECT_EQ(media::recordsOf(7.3), 658U);
    EXPECT_EQ(media::recordsOf(7.301), 659U);
}

} // namespace
