#include "ErrorOf.h"
#include "Options.h"

#include <gmock/gmock.h>

namespace {

using show::parseOptions;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ShowOptionsTest, WithoutAnyTheLauncherIsConductedAsTheVoiceLasts)
{
    const show::Options options = parseOptions({});
    EXPECT_EQ(options.media, "");
    EXPECT_EQ(options.every, std::nullopt);
    EXPECT_FALSE(options.look.fullscreen);
    EXPECT_EQ(options.look.zoom, 0);
    EXPECT_EQ(options.look.monitor, std::nullopt);
    EXPECT_EQ(options.statusFile, "");
    EXPECT_EQ(options.patience, 5);
    EXPECT_THAT(options.command, IsEmpty());
}

TEST(ShowOptionsTest, AllAreTaken)
{
    const show::Options options =
        parseOptions({"--media", "reef", "--every=62.5", "--fullscreen", "--zoom", "-3", "--screen",
                      "1", "--status", "s", "--patience", "20", "--", "wall", "--fullscreen"});
    EXPECT_EQ(options.media, "reef");
    EXPECT_EQ(options.every, 62.5);
    EXPECT_TRUE(options.look.fullscreen);
    EXPECT_EQ(options.look.zoom, -3);
    EXPECT_EQ(options.look.monitor, 1);
    EXPECT_EQ(options.statusFile, "s");
    EXPECT_EQ(options.patience, 20);
    EXPECT_THAT(options.command, ElementsAre("wall", "--fullscreen"));
}

TEST(ShowOptionsTest, AWordAloneIsTheFolder)
{
    const show::Options options =
        parseOptions({"--zoom", "3", "reef", "--", "wall", "a", "--", "b"});
    EXPECT_EQ(options.media, "reef");
    EXPECT_THAT(options.command, ElementsAre("wall", "a", "--", "b"));
}

TEST(ShowOptionsTest, WhatMakesNoSenseIsRefused)
{
    const auto errorOf = [](std::vector<std::string> words) {
        return ::errorOf([&] { parseOptions(words); });
    };
    EXPECT_EQ(errorOf({"--every", "4"}), "--every takes a number from 5 to 1000000, not \"4\"");
    EXPECT_EQ(errorOf({"--zoom", "21"}), "--zoom takes a whole number from -20 to 20, not \"21\"");
    EXPECT_EQ(errorOf({"--patience", "0"}), "--patience takes a number from 1 to 600, not \"0\"");
    EXPECT_EQ(errorOf({"--screen", "1"}), "--screen needs --fullscreen");
    EXPECT_EQ(errorOf({"reef", "pond"}), "two folders of media: \"reef\" and \"pond\"");
    EXPECT_EQ(errorOf({"--media", "reef", "pond"}), "two folders of media: \"reef\" and \"pond\"");
    EXPECT_EQ(errorOf({""}), "unknown option \"\"");
    EXPECT_EQ(errorOf({"--"}), "a command has to follow --");
}

} // namespace
