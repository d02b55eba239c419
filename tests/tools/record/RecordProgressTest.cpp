#include "Progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace {

using record::Progress;
using record::timeLeft;

Progress::Duration seconds(double count)
{
    return Progress::Duration(count);
}

class RecordProgressTest : public testing::Test {
protected:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    File file{std::tmpfile(), std::fclose};

    std::string written() const
    {
        std::string text(static_cast<std::size_t>(std::ftell(file.get())), '\0');
        std::rewind(file.get());
        text.resize(std::fread(text.data(), 1, text.size(), file.get()));
        return text;
    }
};

TEST_F(RecordProgressTest, WritesALineAtEveryTenth)
{
    {
        Progress progress(file.get(), false, 40);
        for (int done = 1; done <= 13; ++done) {
            progress.show(done, seconds(done));
        }
    }
    EXPECT_EQ(written(), "10 %, 0:36 left\n20 %, 0:32 left\n30 %, 0:28 left\n");
}

TEST_F(RecordProgressTest, WritesOneLineForSeveralTenthsAtOnce)
{
    {
        Progress progress(file.get(), false, 3);
        for (int done = 1; done <= 3; ++done) {
            progress.show(done, seconds(done));
        }
    }
    EXPECT_EQ(written(), "33 %, 0:02 left\n66 %, 0:01 left\n100 %, 0:00 left\n");
}

TEST_F(RecordProgressTest, DrawsABarThatGoesAwayAtTheEnd)
{
    {
        Progress progress(file.get(), true, 4);
        progress.show(1, seconds(0));
        progress.show(2, seconds(0.09)); // too early to draw again
        progress.show(3, seconds(0.1));
    }
    EXPECT_EQ(written(), "\r[##########..............................]  25 %  0:00 left\033[K"
                         "\r[##############################..........]  75 %  0:01 left\033[K"
                         "\r\033[K");
}

TEST_F(RecordProgressTest, WithoutWorkNothingIsDrawn)
{
    {
        const Progress progress(file.get(), true, 4);
    }
    EXPECT_EQ(written(), "");
}

TEST(RecordTimeLeftTest, GoesOnAsBefore)
{
    EXPECT_EQ(timeLeft(0, 10, seconds(5)), "");
    EXPECT_EQ(timeLeft(1, 2, seconds(5)), "0:05 left");
    EXPECT_EQ(timeLeft(1, 2, seconds(4.2)), "0:05 left");
    EXPECT_EQ(timeLeft(1, 14, seconds(5)), "1:05 left");
    EXPECT_EQ(timeLeft(1, 2, seconds(3599)), "59:59 left");
    EXPECT_EQ(timeLeft(1, 2, seconds(3600)), "1:00:00 left");
    EXPECT_EQ(timeLeft(1, 1441, seconds(60.5)), "24:12:00 left");
    EXPECT_EQ(timeLeft(2, 2, seconds(60)), "0:00 left");
}

} // namespace
