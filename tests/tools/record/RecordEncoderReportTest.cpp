#include "EncoderReport.h"

#include <gtest/gtest.h>

namespace {

using record::EncoderReport;

TEST(RecordEncoderReportTest, CountsTheFramesOfTheLastWholeBlock)
{
    EncoderReport report;
    EXPECT_EQ(report.taken(), 0);
    report.read("frame=12\nfps=0.00\nout_time=00:00:00.1\n");
    EXPECT_EQ(report.taken(), 0) << "the block goes on";
    report.read("progress=continue\nframe=40\nprogr");
    EXPECT_EQ(report.taken(), 12);
    report.read("ess=end\n");
    EXPECT_EQ(report.taken(), 40);
}

TEST(RecordEncoderReportTest, CountsWhatTheEncoderWasGivenWhateverItsRate)
{
    EncoderReport report;
    report.read("frame=22\ndup_frames=0\ndrop_frames=18\nprogress=continue\n");
    EXPECT_EQ(report.taken(), 40);
    report.read("frame=100\ndup_frames=50\ndrop_frames=0\nprogress=continue\n");
    EXPECT_EQ(report.taken(), 50);
}

TEST(RecordEncoderReportTest, LeavesOutWhatMakesNoSense)
{
    EncoderReport report;
    report.read("frame=7\nprogress=continue\n");
    report.read("frame=many\nframe=-5\nframe=99999999999999999999\nframe\n=9\n\n" +
                std::string(100000, 'f') + "\nprogress=end\n");
    EXPECT_EQ(report.taken(), 7);
    report.read("dup_frames=10\nprogress=end\n");
    EXPECT_EQ(report.taken(), 0) << "never below 0";
}

} // namespace
