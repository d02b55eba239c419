#include "Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using record::Options;
using record::parseOptions;
using record::SECOND;

TEST(RecordOptionsTest, DefaultsMakeHalfAMinuteAsInTheWindow)
{
    const Options options = parseOptions({"--out", "film.mp4"});
    EXPECT_EQ(options.out, "film.mp4");
    EXPECT_EQ(options.png, "");
    EXPECT_EQ(options.at, 0);
    EXPECT_EQ(options.seconds, 30 * SECOND);
    EXPECT_EQ(options.width, 740);
    EXPECT_EQ(options.height, 740);
    EXPECT_EQ(options.fps, 40);
    EXPECT_EQ(options.seed, 1U);
    EXPECT_EQ(options.media, "");
    EXPECT_EQ(options.script, "");
    EXPECT_THAT(options.encoderOptions, testing::IsEmpty());
    EXPECT_EQ(options.action, commandline::Action::work);
}

TEST(RecordOptionsTest, AreTakenInAnyOrder)
{
    const Options options =
        parseOptions({"--seed", "4294967295", "--fps", "25", "--size", "1920x1080", "--at",
                      "2.000001", "--script", "a b", "--seconds", "0.025", "--out", "x/film.gif",
                      "--media", "m", "--", "-crf", "--out"});
    EXPECT_EQ(options.seed, 4294967295U);
    EXPECT_EQ(options.fps, 25);
    EXPECT_EQ(options.width, 1920);
    EXPECT_EQ(options.height, 1080);
    EXPECT_EQ(options.at, 2000001);
    EXPECT_EQ(options.script, "a b");
    EXPECT_EQ(options.seconds, 25000);
    EXPECT_EQ(options.out, "x/film.gif");
    EXPECT_EQ(options.media, "m");
    EXPECT_THAT(options.encoderOptions, testing::ElementsAre("-crf", "--out"));
}

TEST(RecordOptionsTest, AHashNeedsNoFile)
{
    const Options options = parseOptions({"--hash", "--at", "10"});
    EXPECT_TRUE(options.hash);
    EXPECT_EQ(options.at, 10 * SECOND);
    EXPECT_FALSE(parseOptions({"--png", "a.png"}).hash);
}

TEST(RecordOptionsTest, AWordAloneIsTheFilmOrThePicture)
{
    const Options film = parseOptions({"--at", "10", "x/film.mp4", "--", "-crf", "1"});
    EXPECT_EQ(film.out, "x/film.mp4");
    EXPECT_THAT(film.encoderOptions, testing::ElementsAre("-crf", "1"));
    EXPECT_EQ(parseOptions({"picture.png", "--at", "10"}).png, "picture.png");
}

TEST(RecordOptionsTest, FlashesAreThoseOfAFilmWithoutAFile)
{
    const Options options = parseOptions({"--flashes", "--seconds", "5"});
    EXPECT_TRUE(options.flashes);
    EXPECT_TRUE(options.isFilm());
    EXPECT_TRUE(parseOptions({"--out", "a.mp4"}).isFilm());
    EXPECT_FALSE(parseOptions({"--png", "a.png"}).isFilm());
}

TEST(RecordOptionsTest, AStreamGoesOnUnlessItHasALength)
{
    const Options options = parseOptions({"--live", "y4m"});
    EXPECT_EQ(options.live, record::LiveFormat::y4m);
    EXPECT_TRUE(options.isFilm());
    EXPECT_EQ(options.seconds, record::LONGEST_TIME);
    EXPECT_TRUE(options.untilVoiceEnds);
    const Options two = parseOptions({"--live", "raw", "--seconds", "2"});
    EXPECT_EQ(two.seconds, 2 * SECOND);
    EXPECT_FALSE(two.untilVoiceEnds);
    EXPECT_EQ(parseOptions({"--live", "raw", "--size", "3x1"}).live, record::LiveFormat::raw);
}

TEST(RecordOptionsTest, HelpAndVersionNeedNothingElse)
{
    EXPECT_EQ(parseOptions({"--help"}).action, commandline::Action::help);
    EXPECT_EQ(parseOptions({"--version"}).action, commandline::Action::version);
}

struct BadLine {
    std::vector<std::string> arguments;
    const char* message;
};

class RecordBadOptionsTest : public testing::TestWithParam<BadLine> {};

TEST_P(RecordBadOptionsTest, SayWhatIsWrong)
{
    try {
        parseOptions(GetParam().arguments);
        FAIL() << "no error: " << GetParam().message;
    } catch (const commandline::UsageError& error) {
        EXPECT_STREQ(error.what(), GetParam().message);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, RecordBadOptionsTest,
    testing::Values(
        BadLine{
            {},
            "--out FILE, --live KIND, --png FILE, --sheet FILE, --hash or --flashes is missing"},
        BadLine{{"--sheet", "a.jpg"}, "--sheet takes a name that ends in .png, not \"a.jpg\""},
        BadLine{{"--sheet", "a.png", "--at", "5"}, "--sheet does not go with --at"},
        BadLine{{"--hash", "--sheet", "a.png"}, "--hash and --sheet do not go together"},
        BadLine{{"--sheet", "a.png", "--", "-crf", "1"}, "options after -- are for films"},
        BadLine{{"--hash", "--png", "b.png"}, "--hash and --png do not go together"},
        BadLine{{"--out", "a.mp4", "--hash"}, "--out and --hash do not go together"},
        BadLine{{"--flashes", "--out", "a.mp4"}, "--flashes and --out do not go together"},
        BadLine{{"--live", "mp4"}, "--live takes y4m or raw, not \"mp4\""},
        BadLine{{"--live", "y4m", "--out", "a.mp4"}, "--live and --out do not go together"},
        BadLine{{"--live", "y4m", "--size", "3x2"}, "--size of a film takes even numbers, not 3x2"},
        BadLine{{"--flashes", "--", "-crf", "1"}, "options after -- are for films"},
        BadLine{{"--out", "a.mp4", "--png", "b.png"}, "--out and --png do not go together"},
        BadLine{{"--png", "b.png", "--", "-crf", "1"}, "options after -- are for films"},
        BadLine{{"a.mp4", "b.png"}, "\"b.png\" is one word too many"},
        BadLine{{"a.mp4", "--hash"}, "--hash and --out do not go together"},
        BadLine{{"film"},
                "--out takes a name whose extension tells the kind of film, such as film.mp4, "
                "not \"film\""},
        BadLine{{"--out", "film"},
                "--out takes a name whose extension tells the kind of film, such as film.mp4, "
                "not \"film\""},
        BadLine{{"--out", "a.b/"},
                "--out takes a name whose extension tells the kind of film, such as film.mp4, "
                "not \"a.b/\""},
        BadLine{{"--out", "film."},
                "--out takes a name whose extension tells the kind of film, such as film.mp4, "
                "not \"film.\""},
        BadLine{{"--out", "film.png"}, "--out makes a film; a picture takes --png film.png"},
        BadLine{{"--out", "film.nonsense"},
                "there is no kind of film called .nonsense; .mp4 suits most, and -- -f FORMAT "
                "tells ffmpeg another one"},
        BadLine{{"--out", "film.MP4", "--", "-crf", "30"},
                "there is no kind of film called .MP4; .mp4 suits most, and -- -f FORMAT tells "
                "ffmpeg another one"},
        BadLine{{"--png", "folder/"}, "--png takes a name that ends in .png, not \"folder/\""},
        BadLine{{"--png", "x.jpg"}, "--png takes a name that ends in .png, not \"x.jpg\""},
        BadLine{{"--png", "png"}, "--png takes a name that ends in .png, not \"png\""},
        BadLine{{"--png", ".png"}, "--png takes a name that ends in .png, not \".png\""},
        BadLine{{"--at", "-1"}, "--at takes seconds from 0 to 36000, such as 12.5, not \"-1\""},
        BadLine{{"--at", "36000.1"},
                "--at takes seconds from 0 to 36000, such as 12.5, not \"36000.1\""},
        BadLine{{"--seconds", "0"},
                "--seconds takes more than 0 and at most 36000 seconds, such "
                "as 7.5, not \"0\""},
        BadLine{{"--seconds", "5s"},
                "--seconds takes more than 0 and at most 36000 seconds, such "
                "as 7.5, not \"5s\""},
        BadLine{{"--size", "740"},
                "--size takes width x height in pixels, such as 1080x1080, not \"740\""},
        BadLine{{"--size", "0x740"},
                "--size takes width x height in pixels, such as 1080x1080, not \"0x740\""},
        BadLine{{"--size", "740x65537"},
                "--size takes width x height in pixels, such as 1080x1080, not \"740x65537\""},
        BadLine{{"--size", "740x740x"},
                "--size takes width x height in pixels, such as 1080x1080, not \"740x740x\""},
        BadLine{{"--size", "741x740", "--out", "a.mp4"},
                "--size of a film takes even numbers, not 741x740"},
        BadLine{{"--out", "a.mp4", "--size", "740x741"},
                "--size of a film takes even numbers, not 740x741"},
        BadLine{{"--hash", "--replay", "l", "--seed", "1"}, "--replay does not go with --seed"},
        BadLine{{"--hash", "--replay", "l", "--script", "s"}, "--replay does not go with --script"},
        BadLine{{"--hash", "--tile", "0", "0"}, "--tile goes with --replay"},
        BadLine{{"--replay", "l", "--tile", "1"},
                "--tile takes a column and a row, counted from 0 at the top left, not \"1\""},
        BadLine{{"--fps", "0"}, "--fps takes a whole number from 1 to 1000, not \"0\""},
        BadLine{{"--fps", "29.97"}, "--fps takes a whole number from 1 to 1000, not \"29.97\""},
        BadLine{{"--seed", "-1"}, "--seed takes a whole number from 0 to 4294967295, not \"-1\""},
        BadLine{{"--seed", "4294967296"},
                "--seed takes a whole number from 0 to 4294967295, not \"4294967296\""}));

TEST(RecordOptionsTest, AShowIsPlayedAgainAsItWas)
{
    const record::Options options =
        parseOptions({"--replay", "show.log", "--tile", "1", "0", "--out", "a.mp4"});
    EXPECT_EQ(options.replay, "show.log");
    ASSERT_TRUE(options.tile.has_value());
    EXPECT_EQ(options.tile->column, 1);
    EXPECT_EQ(options.tile->row, 0);
    EXPECT_EQ(options.seconds, record::LONGEST_TIME);
    EXPECT_FALSE(options.sizeGiven);
    EXPECT_TRUE(parseOptions({"--replay", "l", "--png", "a.png", "--size", "8x8"}).sizeGiven);
    EXPECT_EQ(parseOptions({"--replay", "l", "--out", "a.mp4", "--seconds", "2"}).seconds,
              2 * record::SECOND);
}

TEST(RecordOptionsTest, AFilmMayHaveAnyExtensionWhenFfmpegIsToldItsFormat)
{
    EXPECT_EQ(parseOptions({"--out", "a.nonsense", "--", "-f", "matroska"}).out, "a.nonsense");
}

TEST(RecordOptionsTest, APictureMayHaveAnySize)
{
    EXPECT_EQ(parseOptions({"--png", "a.png", "--size", "741x1"}).width, 741);
}

TEST(RecordOptionsTest, UsageNamesEveryOption)
{
    for (const char* option :
         {"--out", "--live", "--png", "--hash", "--flashes", "--at", "--seconds", "--size", "--fps",
          "--seed", "--media", "--script", "--replay", "--tile"}) {
        EXPECT_THAT(record::usage(), testing::HasSubstr(std::string("\n  ") + option));
    }
}

TEST(RecordTimeTest, ReadsDecimalsExactly)
{
    EXPECT_EQ(record::parseTime("0"), 0);
    EXPECT_EQ(record::parseTime("12"), 12000000);
    EXPECT_EQ(record::parseTime("12.5"), 12500000);
    EXPECT_EQ(record::parseTime("0.000001"), 1);
    EXPECT_EQ(record::parseTime("007.050"), 7050000);
    EXPECT_EQ(record::parseTime("36000"), record::LONGEST_TIME);
}

TEST(RecordTimeTest, TakesNothingElse)
{
    for (const char* text :
         {"", ".", "1.", ".5", "-1", "+1", " 1", "1 ", "1e3", "0x1", "nan", "inf", "1,5", "1.2.3",
          "0.0000001", "36000.000001", "36001", "99999999999999999999"}) {
        EXPECT_EQ(record::parseTime(text), std::nullopt) << text;
    }
}

} // namespace
