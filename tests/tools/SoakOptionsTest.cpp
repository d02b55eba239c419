#include "Options.h"

#include "ErrorOf.h"

#include <gmock/gmock.h>

namespace {

using soak::parseOptions;
using testing::ElementsAre;
using testing::HasSubstr;

/// What is said of a command line that makes no sense.
std::string complaint(const std::vector<std::string>& arguments)
{
    return errorOf([&] { parseOptions(arguments); });
}

TEST(SoakOptionsTest, WithoutOptionsItPlaysThreeDaysOfTwoSeeds)
{
    const soak::Options options = parseOptions({});
    EXPECT_EQ(options.action, commandline::Action::work);
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
    EXPECT_EQ(parseOptions({"--help"}).action, commandline::Action::help);
}

TEST(SoakOptionsTest, WhatMakesNoSenseIsSaid)
{
    EXPECT_EQ(complaint({"--hours", "-1"}), "--hours takes a number from 0 to 10000, not \"-1\"");
    EXPECT_EQ(complaint({"--seed", "-1"}),
              "--seed takes a whole number from 0 to 4294967295, not \"-1\"");
    EXPECT_EQ(complaint({"--every", "0"}),
              "--every takes a whole number from 1 to 100000, not \"0\"");
    EXPECT_EQ(complaint({"--voice", "1e9"}),
              "--voice takes a number from 0 to 100000, not \"1e9\"");
}

TEST(SoakOptionsTest, HelpNamesEveryOption)
{
    for (const char* option : {"--hours", "--seed", "--media", "--voice", "--every", "--help"}) {
        EXPECT_THAT(soak::usage(), HasSubstr(option));
    }
}

} // namespace
