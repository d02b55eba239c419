#include "LiveStream.h"
#include "Pace.h"

#include "ErrorOf.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using record::LiveFormat;
using record::LiveStream;
using record::Pace;
using record::Picture;
using testing::ElementsAre;

/// 2 x 2 pixels of one color.
Picture small(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    Picture picture{2, 2, {}};
    for (int i = 0; i < 4; ++i) {
        picture.pixels.insert(picture.pixels.end(), {red, green, blue, 9});
    }
    return picture;
}

// The colors of a color bar, as BT.601 has them in its limited range.
TEST(RecordYuvTest, ConvertsColorsAsBt601Does)
{
    EXPECT_THAT(toYuv420(small(255, 255, 255)), ElementsAre(235, 235, 235, 235, 128, 128));
    EXPECT_THAT(toYuv420(small(0, 0, 0)), ElementsAre(16, 16, 16, 16, 128, 128));
    EXPECT_THAT(toYuv420(small(255, 0, 0)), ElementsAre(81, 81, 81, 81, 90, 240));
    EXPECT_THAT(toYuv420(small(0, 255, 0)), ElementsAre(145, 145, 145, 145, 54, 34));
    EXPECT_THAT(toYuv420(small(0, 0, 255)), ElementsAre(41, 41, 41, 41, 240, 110));
    EXPECT_THAT(toYuv420(small(255, 255, 0)), ElementsAre(210, 210, 210, 210, 16, 146));
}

TEST(RecordYuvTest, TakesTheColorOfFourPixelsTogether)
{
    // The left half is red, the right half is black: half of red's distances to 128.
    Picture picture = small(0, 0, 0);
    picture.pixels[0] = picture.pixels[8] = 255;
    EXPECT_THAT(toYuv420(picture), ElementsAre(81, 16, 81, 16, 109, 184));
}

TEST(RecordYuvTest, PutsPixelsRowByRowAndPlanesOneAfterTheOther)
{
    Picture picture{4, 2, std::vector<std::uint8_t>(32)};
    for (int i = 8; i < 12; ++i) {
        picture.pixels[static_cast<std::size_t>(i)] = 255; // the third pixel is white
    }
    EXPECT_THAT(toYuv420(picture),
                ElementsAre(16, 16, 235, 16, 16, 16, 16, 16, 128, 128, 128, 128));
}

class RecordLiveStreamTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::signal(SIGPIPE, SIG_IGN);
        ASSERT_EQ(pipe(ends.data()), 0);
    }
    void TearDown() override
    {
        for (const int end : ends) {
            close(end);
        }
    }

    std::string written() const
    {
        std::array<char, 4096> bytes{};
        const ssize_t count = read(ends[0], bytes.data(), bytes.size());
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

    std::array<int, 2> ends{};
};

TEST_F(RecordLiveStreamTest, RawFramesAreThePixels)
{
    LiveStream stream(ends[1], LiveFormat::raw, 2, 2, 40);
    EXPECT_TRUE(stream.write(small('r', 'g', 'b')));
    EXPECT_TRUE(stream.write(small('R', 'G', 'B')));
    EXPECT_EQ(written(), "rgb\trgb\trgb\trgb\tRGB\tRGB\tRGB\tRGB\t");
}

TEST_F(RecordLiveStreamTest, Y4mHasOneHeaderAndAWordBeforeEachFrame)
{
    LiveStream stream(ends[1], LiveFormat::y4m, 2, 2, 40);
    EXPECT_TRUE(stream.write(small(255, 0, 0)));
    EXPECT_TRUE(stream.write(small(255, 0, 0)));
    EXPECT_EQ(written(), "YUV4MPEG2 W2 H2 F40:1 Ip A1:1 C420jpeg\n"
                         "FRAME\nQQQQZ\xf0"
                         "FRAME\nQQQQZ\xf0");
}

TEST_F(RecordLiveStreamTest, SaysThatNobodyReadsAnyMore)
{
    close(ends[0]);
    ends[0] = -1;
    LiveStream stream(ends[1], LiveFormat::raw, 2, 2, 40);
    EXPECT_FALSE(stream.write(small(1, 2, 3)));
}

TEST(RecordLiveStreamErrorTest, SaysWhyItCannotWrite)
{
    const int full = open("/dev/full", O_WRONLY);
    LiveStream stream(full, LiveFormat::y4m, 2, 2, 40);
    EXPECT_EQ(errorOf([&] { stream.write(small(1, 2, 3)); }),
              "cannot write the stream: No space left on device");
    close(full);
}

/// A clock that stands still unless it is told.
class RecordPaceTest : public testing::Test {
protected:
    Pace pace{40};
    Pace::Clock::time_point now{5s};

    Pace::Duration waitAfter(Pace::Duration time)
    {
        now += time;
        return pace.waitAt(now);
    }
};

TEST_F(RecordPaceTest, FramesAreDueInEqualIntervals)
{
    EXPECT_EQ(waitAfter(0s), 0s) << "the first one at once";
    EXPECT_EQ(waitAfter(0s), 25ms);
    EXPECT_EQ(waitAfter(30ms), 20ms) << "due after 50";
    EXPECT_EQ(waitAfter(45ms), 0s) << "due now";
}

TEST_F(RecordPaceTest, ADelayOfUpToASecondIsMadeUpFor)
{
    waitAfter(0s);
    EXPECT_EQ(waitAfter(1025ms), 0s) << "a second late";
    for (int frame = 2; frame <= 41; ++frame) {
        EXPECT_EQ(waitAfter(0s), 0s) << frame;
    }
    EXPECT_EQ(waitAfter(0s), 25ms) << "frame 42 is due after 1050";
    EXPECT_EQ(pace.lost(), 0s);
}

TEST_F(RecordPaceTest, ALongerDelayIsNot)
{
    waitAfter(0s);
    EXPECT_EQ(waitAfter(3025ms), 0s) << "three seconds late";
    EXPECT_EQ(pace.lost(), 3s);
    EXPECT_EQ(waitAfter(0s), 25ms);
    EXPECT_EQ(waitAfter(1225ms), 0s) << "of 1.175 s again";
    EXPECT_EQ(pace.lost(), 4175ms);
}

TEST_F(RecordPaceTest, KeepsTimeForDaysWithoutDrift)
{
    Pace thirds(3);
    const Pace::Clock::time_point start{1s};
    thirds.waitAt(start);
    for (int frame = 1; frame < 3000000; ++frame) {
        thirds.waitAt(start + 333333333ns * static_cast<std::int64_t>(frame));
    }
    EXPECT_EQ(thirds.waitAt(start + 999999s), 1s);
}

} // namespace
