#include "StatusFile.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::MatchesRegex;
using wall::FrameRecord;
using wall::StatusFile;

/// The file, without the time of day; empty when it is not there.
std::string line()
{
    std::ifstream file("status");
    std::stringstream text;
    text << file.rdbuf();
    const std::size_t space = text.str().find(' ');
    return space == std::string::npos ? text.str() : text.str().substr(space + 1);
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
    EXPECT_EQ(line(), "");
    status.add({record(7000000, 5, 1), record(10000000, 6, 2), record(1, 7, 6)}, 101);
    EXPECT_THAT(line(), MatchesRegex("frame=40 rate=3.0 skew_ms=2.00 skew_p95_ms=2.00 draw_ms=7.5 "
                                     "slowest=reef-right wait_ms=2.3 state=[0-9a-f]{16}\n"));

    // Nothing is left of the second before, nor of its line.
    status.add({record(7000000, 4, 0), record(7000000, 3, 0), record(1, 2, 0)}, 103);
    EXPECT_THAT(line(), MatchesRegex("frame=40 rate=0.5 skew_ms=0.00 skew_p95_ms=0.00 draw_ms=4.0 "
                                     "slowest=reef-left wait_ms=0.0 state=[0-9a-f]{16}\n"));
}

TEST(WallStatusFileTest, WhatCannotBeWrittenIsSaid)
{
    const TempDirectory folder;
    TempDirectory::write("file", "");
    EXPECT_EQ(errorOf([] { StatusFile("file/status", {"reef"}); }),
              "cannot write file/status: Not a directory");
}
