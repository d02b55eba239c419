#include "Options.h"

#include <gtest/gtest.h>

namespace {

/// What is said of a command line that makes no sense.
std::string refusal(const std::vector<std::string>& arguments)
{
    try {
        live::parseOptions(arguments);
    } catch (const commandline::UsageError& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(LiveOptionsTest, TheDefaultsAreWhatTheManPageSays)
{
    const live::Options options = live::parseOptions({});
    EXPECT_EQ(options.bind, "127.0.0.1");
    EXPECT_EQ(options.port, 9000);
    EXPECT_FALSE(options.seed.has_value());
    EXPECT_FALSE(options.loop || options.fullscreen || options.force);
    EXPECT_TRUE(options.media.empty() && options.record.empty() && options.status.empty());
}

TEST(LiveOptionsTest, TakesEachOption)
{
    const live::Options options = live::parseOptions(
        {"--bind", "0.0.0.0", "--port=57120", "--fullscreen", "--loop", "--media", "m", "--seed",
         "4294967295", "--record", "d.txt", "--force", "--status", "s"});
    EXPECT_EQ(options.bind, "0.0.0.0");
    EXPECT_EQ(options.port, 57120);
    EXPECT_EQ(options.seed, 4294967295U);
    EXPECT_TRUE(options.loop && options.fullscreen && options.force);
    EXPECT_EQ(options.media, "m");
    EXPECT_EQ(options.record, "d.txt");
    EXPECT_EQ(options.status, "s");
    EXPECT_EQ(live::parseOptions({"m"}).media, "m");
}

TEST(LiveOptionsTest, SaysWhatMakesNoSense)
{
    EXPECT_EQ(refusal({"--port", "0"}), "--port takes a whole number from 1 to 65535, not \"0\"");
    EXPECT_EQ(refusal({"--port", "65536"}),
              "--port takes a whole number from 1 to 65535, not \"65536\"");
    EXPECT_EQ(refusal({"--force"}), "--force goes with --record");
    EXPECT_EQ(refusal({"a", "--media", "b"}), "two folders of media: \"b\" and \"a\"");
}
