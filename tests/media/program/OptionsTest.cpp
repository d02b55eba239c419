#include "Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using media::Options;
using media::parseOptions;

TEST(OptionsTest, DefaultsMakeTheSetThatTheScenePlays)
{
    const Options options = parseOptions({"--out", "x"});
    EXPECT_EQ(options.out, "x");
    EXPECT_EQ(options.request.seed, 1u);
    EXPECT_EQ(options.request.waterSize, 1024);
    EXPECT_EQ(options.request.seconds, 120);
    EXPECT_EQ(options.only, nullptr);
    EXPECT_FALSE(options.request.font.empty());
    EXPECT_FALSE(options.request.fontLicense.empty());
}

TEST(OptionsTest, AreTakenInAnyOrder)
{
    const Options options = parseOptions({"--seconds", "20", "--only", "water", "--seed",
                                          "18446744073709551615", "--out", "x", "--water", "4096"});
    EXPECT_EQ(options.request.seconds, 20);
    EXPECT_STREQ(options.only->name, "water");
    EXPECT_EQ(options.request.seed, UINT64_MAX);
    EXPECT_EQ(options.request.waterSize, 4096);
}

TEST(OptionsTest, AWideSetHasTwiceTheWater)
{
    EXPECT_FALSE(parseOptions({"--out", "x"}).request.wide);
    EXPECT_TRUE(parseOptions({"--wide", "--out", "x"}).request.wide);
    EXPECT_EQ(parseOptions({"--wide", "--out", "x"}).request.waterSize, 2048);
    EXPECT_EQ(parseOptions({"--wide", "--out", "x", "--water", "512"}).request.waterSize, 512);
}

TEST(OptionsTest, LengthsMayHaveDecimals)
{
    EXPECT_EQ(parseOptions({"--out", "x", "--seconds", "7.25"}).request.seconds, 7.25);
    EXPECT_TRUE(parseOptions({"--out", "x", "--seconds", "5"}).isLengthGiven);
    EXPECT_FALSE(parseOptions({"--out", "x"}).isLengthGiven);
}

TEST(OptionsTest, ATableMakesTheDanceAndNothingElse)
{
    for (const std::vector<std::string>& more : {{}, std::vector<std::string>{"--only", "dance"}}) {
        std::vector<std::string> arguments{"--dance", "t.txt", "--out", "x"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Options options = parseOptions(arguments);
        EXPECT_EQ(options.request.table, "t.txt");
        EXPECT_EQ(options.only, &media::danceAsset());
    }
    EXPECT_STREQ(media::danceAsset().name, "dance");
    EXPECT_THROW(parseOptions({"--out", "x", "--dance", "t.txt", "--only", "fish"}),
                 commandline::UsageError);
}

TEST(OptionsTest, HelpNeedsNothingElse)
{
    EXPECT_TRUE(parseOptions({"--help"}).action == commandline::Action::help);
    EXPECT_TRUE(parseOptions({"-h"}).action == commandline::Action::help);
}

TEST(OptionsTest, TakeWholeNumbersInTheirRangeOnly)
{
    for (const char* text : {"-1", "18446744073709551616"}) {
        EXPECT_THROW(parseOptions({"--out", "x", "--seed", text}), commandline::UsageError) << text;
    }
    for (const char* text : {"0", "32", "63", "65", "1000", "8192", "-64"}) {
        EXPECT_THROW(parseOptions({"--out", "x", "--water", text}), commandline::UsageError)
            << text;
    }
    for (const char* text : {"4.99", "600.1", "7,5", "nan"}) {
        EXPECT_THROW(parseOptions({"--out", "x", "--seconds", text}), commandline::UsageError)
            << text;
    }
}

TEST(OptionsTest, UsageListsEveryAsset)
{
    for (const media::Asset& asset : media::assets()) {
        EXPECT_THAT(media::usage(), testing::HasSubstr(asset.about));
        EXPECT_EQ(parseOptions({"--out", "x", "--only", asset.name}).only, &asset);
    }
}

} // namespace
