#include "Options.h"

#include <gmock/gmock.h>

namespace {

using soak::parseOptions;
using testing::ElementsAre;
using testing::HasSubstr;

/// What is said of a command line that makes no sense; nothing when it makes sense.
std::string complaint(const std::vector<std::string>& arguments)
{
    try {
        parseOptions(arguments);
        return "";
    } catch (const soak::UsageError& error) {
        return error.what();
    }
}

TEST(SoakOptionsTest, WithoutOptionsItPlaysThreeDaysOfTwoSeeds)
{
    const soak::Options options = parseOptions({});
    EXPECT_FALSE(options.help);
    EXPECT_EQ(options.hours, 72);
    EXPECT_THAT(options.seeds, ElementsAre(1u, 2u));
    EXPECT_EQ(options.media, "");
    EXPECT_FALSE(options.voiceSeconds);
    EXPECT_EQ(options.every, 60);
}

TEST(SoakOptionsTest, EachOptionIsTaken)
{
    const soak::Options options =
        parseOptions({"--hours", "0.5", "--seed", "7", "--media", "some folder", "--voice", "1.5",
                      "--every", "10", "--seed", "4294967295"});
    EXPECT_EQ(options.hours, 0.5);
    EXPECT_THAT(options.seeds, ElementsAre(7u, 4294967295u));
    EXPECT_EQ(options.media, "some folder");
    EXPECT_EQ(options.voiceSeconds, 1.5);
    EXPECT_EQ(options.every, 10);
    EXPECT_TRUE(parseOptions({"--help"}).help);
    EXPECT_TRUE(parseOptions({"--hours", "1", "--version"}).version);
}

TEST(SoakOptionsTest, WhatMakesNoSenseIsSaid)
{
    EXPECT_EQ(complaint({"--hour", "1"}), "unknown option \"--hour\"");
    EXPECT_EQ(complaint({"72"}), "unknown option \"72\"");
    EXPECT_EQ(complaint({"--hours"}), "--hours needs a value");
    EXPECT_EQ(complaint({"--media", ""}), "--media needs a value");
    EXPECT_EQ(complaint({"--hours", "-1"}), "--hours takes a number from 0 to 10000, not \"-1\"");
    EXPECT_EQ(complaint({"--seed", "-1"}),
              "--seed takes a number from 0 to 4294967295, not \"-1\"");
    EXPECT_EQ(complaint({"--every", "0"}), "--every takes a number from 1 to 100000, not \"0\"");
    EXPECT_EQ(complaint({"--voice", "1e9"}),
              "--voice takes a number from 0 to 100000, not \"1e9\"");
    for (const char* number :
         {"nan", "inf", "1h", "", " 1", "0x10", "1,5", "99999999999999999999"}) {
        EXPECT_NE(complaint({"--hours", number}), "") << number;
    }
    for (const char* number : {"1.5", "4294967296", "one"}) {
        EXPECT_NE(complaint({"--seed", number}), "") << number;
    }
}

TEST(SoakOptionsTest, HelpNamesEveryOption)
{
    for (const char* option : {"--hours", "--seed", "--media", "--voice", "--every", "--help"}) {
        EXPECT_THAT(soak::usage(), HasSubstr(option));
    }
}

} // namespace
