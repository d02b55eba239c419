#include "WallSettings.h"

#include "Walls.h"

#include <string>
#include <utility>
#include <vector>

namespace {

/// What is said about a second file; "" = nothing.
std::string problemOf(const std::string& bytes)
{
    WallSettings settings;
    const auto problem = parseWallSettings(bytes, "reef.cfg.more", settings);
    return problem ? problem->text() : "";
}

TEST(WallSettingsTest, AWholeFileIsRead)
{
    WallSettings settings;
    const auto problem = parseWallSettings("Wall\n"
                                           "Media /srv/reef Fit contain\n"
                                           "Seed 7\n"
                                           "Rate 59.94\n"
                                           "\n"
                                           "Map 0 0\n" // line 6
                                           "Gain 0.5 1 0\n"
                                           "Blend 1 2 3 4 1.8\n"
                                           "Map 1 0 Place 10 20 30 40 Display reef-left:0\n",
                                           "reef.cfg.more", settings);
    ASSERT_FALSE(problem) << problem->text();
    EXPECT_EQ(settings.media, "/srv/reef");
    EXPECT_EQ(settings.fit, Fit::contain);
    EXPECT_EQ(settings.seed, 7u);
    EXPECT_EQ(settings.rate, 59.94);
    ASSERT_EQ(settings.windows.size(), 2u);
    const WindowSettings& first = settings.windows.at({0, 0});
    EXPECT_EQ(first.line, 6);
    EXPECT_EQ(first.gain, (std::array{0.5f, 1.0f, 0.0f}));
    EXPECT_EQ(first.blend, (Blend{1, 2, 3, 4, 1.8f}));
    EXPECT_FALSE(first.place);
    EXPECT_EQ(first.display, "");
    const WindowSettings& second = settings.windows.at({1, 0});
    EXPECT_EQ(second.line, 9);
    EXPECT_EQ(second.gain, (std::array{1.0f, 1.0f, 1.0f}));
    EXPECT_FALSE(second.blend);
    EXPECT_EQ(second.place, (PixelRect{10, 20, 30, 40}));
    EXPECT_EQ(second.display, "reef-left:0");
}

TEST(WallSettingsTest, EverythingIsOptional)
{
    WallSettings settings;
    settings.seed = 3;
    EXPECT_FALSE(parseWallSettings("\n Wall", "reef.cfg.more", settings));
    EXPECT_FALSE(settings.seed) << "nothing is left of an earlier file";
    EXPECT_FALSE(settings.rate);
    EXPECT_FALSE(settings.fit);
    EXPECT_TRUE(settings.windows.empty());
    EXPECT_EQ(problemOf("Wall Map 3 4"), "");
}

TEST(WallSettingsTest, WhatMakesNoSenseIsRefusedWithItsLine)
{
    const std::string gain = " needs a number from 0 to 1";
    const std::string width = " needs a whole number from 0 to 16384";
    for (const auto& [bytes, message] : std::vector<std::pair<std::string, std::string>>{
             {"", "1: the file ends where \"Wall\" is expected"},
             {"\nwall", "2: \"wall\" stands where \"Wall\" is expected"},
             {"Wall\nrate 40", "2: \"rate\" is none of Rate, Seed, Fit, Media and Map"},
             {"Wall\nGain 1 1 1", "2: \"Gain\" is none of Rate, Seed, Fit, Media and Map"},
             {"Wall\nMap 0 0\nRate 40",
              "3: \"Rate\" is none of Display, Place, Blend, Gain and Map"},
             {"Wall Seed 1\nSeed 1", "2: \"Seed\" stands twice"},
             {"Wall\nMap 0 0 Gain 1 1 1\nGain 1 1 1", "3: \"Gain\" stands twice after one Map"},
             {"Wall Map 0 0\nMap 0\n0", "3: Map 0 0 stands twice"},
             {"Wall\nRate 9.9", "2: Rate needs a number from 10 to 120, not \"9.9\""},
             {"Wall\nRate 121", "2: Rate needs a number from 10 to 120, not \"121\""},
             {"Wall\nRate nan", "2: Rate needs a number from 10 to 120, not \"nan\""},
             {"Wall\nRate", "2: the file ends where Rate needs a number from 10 to 120"},
             {"Wall Seed -1", "1: Seed needs a whole number from 0 to 4294967295, not \"-1\""},
             {"Wall Seed 4294967296",
              "1: Seed needs a whole number from 0 to 4294967295, not \"4294967296\""},
             {"Wall Seed 1.5", "1: Seed needs a whole number from 0 to 4294967295, not \"1.5\""},
             {"Wall Fit stretch", "1: Fit needs contain or cover, not \"stretch\""},
             {"Wall Media", "1: the file ends where Media needs a folder"},
             {"Wall Map 0 -1", "1: Map needs a whole number from 0 to 1048576, not \"-1\""},
             {"Wall Map 0 0 Gain 1 1.1 1", "1: Gain" + gain + ", not \"1.1\""},
             {"Wall Map 0 0 Gain 1 -0.1 1", "1: Gain" + gain + ", not \"-0.1\""},
             {"Wall Map 0 0 Gain 1 1", "1: the file ends where Gain" + gain},
             {"Wall Map 0 0 Place 0 0 0 1",
              "1: Place needs a whole number from 1 to 1048576, not \"0\""},
             {"Wall Map 0 0 Place -1 0 1 1",
              "1: Place needs a whole number from 0 to 1048576, not \"-1\""},
             {"Wall Map 0 0 Blend 0 0 0 16385 2", "1: Blend" + width + ", not \"16385\""},
             {"Wall Map 0 0 Blend 0 0 0 0 0.9", "1: Blend needs a number from 1 to 3, not \"0.9\""},
             {"Wall Map 0 0 Blend 0 0 0 0 3.1", "1: Blend needs a number from 1 to 3, not \"3.1\""},
             {"Wall\nSe\x1b[2J", "2: \"Se\\x1b[2J\" is none of Rate, Seed, Fit, Media and Map"},
             {std::string("Wall\nSeed 5\0", 12), "2: there is a NUL character: no text"}}) {
        EXPECT_EQ(problemOf(bytes), "reef.cfg.more:" + message) << bytes;
    }
}

TEST(WallSettingsTest, OnlyDisplaysAreDisplays)
{
    for (const char* display :
         {":0", ":0.1", ":10.0", "reef-left:0", "unix:0.0", "/tmp/.X11-unix/X0:0", "10.0.0.7:1"}) {
        EXPECT_EQ(problemOf(std::string("Wall Map 0 0 Display ") + display), "") << display;
    }
    for (const std::string display : {"0", ":", ":0.", ":.1", ":a", ":0.a", "a b:0", "-x:0",
                                      "$(x):0", "a;b:0", ":0\x1b", ":-1"}) {
        EXPECT_NE(problemOf("Wall Map 0 0 Display " + display), "") << display;
    }
    EXPECT_NE(problemOf("Wall Map 0 0 Display " + std::string(63, 'a') + ":0"), "");
    EXPECT_EQ(problemOf("Wall Map 0 0 Display " + std::string(62, 'a') + ":0"), "");
}

TEST(WallSettingsTest, AFileOfManyWindowsIsReadInOnePass)
{
    std::string bytes = "Wall\n";
    for (int column = 0; column < 60000; ++column) {
        bytes += "Map " + std::to_string(column) + " 0\n";
    }
    WallSettings settings;
    ASSERT_FALSE(parseWallSettings(bytes, "more", settings));
    EXPECT_EQ(settings.windows.size(), 60000u);
    EXPECT_EQ(settings.windows.at({59999, 0}).line, 60001);
}

TEST(WallSettingsTest, ALongWordIsNotCut)
{
    WallSettings settings;
    const std::string path(4095, 'p');
    ASSERT_FALSE(parseWallSettings("Wall Media " + path, "more", settings));
    EXPECT_EQ(settings.media, path);
    for (const std::size_t length : {4096, 100000}) {
        EXPECT_EQ(problemOf("Wall Media " + std::string(length, 'p')),
                  "reef.cfg.more:1: a word is longer than 4095 characters");
    }
}

} // namespace
