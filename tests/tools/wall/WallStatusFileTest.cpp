#include "StatusFile.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using wall::FrameRecord;
using wall::StatusFile;

/// The lines of the file, without the time of day.
std::vector<std::string> lines()
{
    std::vector<std::string> all;
    std::ifstream file("status");
    for (std::string line; std::getline(file, line);) {
        all.push_back(line.substr(line.find(' ') + 1));
    }
    return all;
}

/// What a rank tells after frame 40.
FrameRecord record(std::int64_t left, float drawing, float waiting)
{
    FrameRecord result;
    result.frame = 41;
    result.left = left;
    result.drawing = drawing;
    result.waiting = waiting;
    return result;
}

const std::vector<std::string> HOSTS = {"reef-left", "reef-left", "reef-right"};

} // namespace

TEST(WallStatusFileTest, ALineASecondSumsItsFramesUp)
{
    const TempDirectory folder;
    StatusFile status("status", HOSTS);
    // The ranks of reef-left are 1, 2 and 3 ms apart; the clock of reef-right is another one.
    status.add({record(1, 99, 99), record(1, 99, 99), record(1, 99, 99)}, 100);
    status.add({record(7000000, 5, 1), record(8000000, 6, 2), record(1, 7.5F, 3)}, 100.25);
    status.add({record(7000000, 5, 1), record(9000000, 6, 2), record(1, 7, 3)}, 100.75);
    EXPECT_TRUE(lines().empty());
    status.add({record(7000000, 5, 1), record(10000000, 6, 2), record(1, 7, 6)}, 101);
    ASSERT_EQ(lines().size(), 1U);
    EXPECT_THAT(lines()[0], HasSubstr("frame 40 rate 3.0 skew 2.00 2.00 ms draw 7.5 ms reef-right "
                                      "wait 2.3 ms state "));

    // Nothing is left of the second before.
    status.add({record(7000000, 4, 0), record(7000000, 3, 0), record(1, 2, 0)}, 103);
    ASSERT_EQ(lines().size(), 2U);
    EXPECT_THAT(lines()[1], HasSubstr("rate 0.5 skew 0.00 0.00 ms draw 4.0 ms reef-left wait 0.0"));
}

TEST(WallStatusFileTest, WhatIsThereStays)
{
    const TempDirectory folder;
    TempDirectory::write("status", "day before\n");
    StatusFile status("status", {"reef"});
    status.add({record(1, 1, 1)}, 5);
    status.add({record(1, 1, 1)}, 6);
    EXPECT_THAT(lines(), ElementsAre("before", HasSubstr("frame 40 rate 1.0")));
}

TEST(WallStatusFileTest, WhatCannotBeWrittenIsSaid)
{
    const TempDirectory folder;
    EXPECT_EQ(errorOf([] { StatusFile("no/status", {"reef"}); }),
              "cannot write no/status: No such file or directory");
}
