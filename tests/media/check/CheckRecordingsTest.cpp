#include "CheckRecordings.h"

#include "CheckMotion.h"
#include "CheckedFolder.h"
#include "Point.h"

#include <cmath>
#include <functional>
#include <sys/stat.h>

namespace {

using media::FileReport;
using media::Mark;
using media::Point;

constexpr int RECORDS = 900;
constexpr double SECONDS = 10;

/// The recorded position of a sensor by the fraction of the recording, 0 .. 1.
using Path = std::function<Point(double)>;

constexpr double TURN = 6.283185307179586;

/// From below the picture to its middle and back, softly.
Point rocking(double t)
{
    return {0, static_cast<float>(0.8 * (1 - std::cos(TURN * t)))};
}

/// The same as far as to the middle; then up and out, by 0.0125 at each update, and home.
Point calm(double t)
{
    if (t <= 0.5) {
        return rocking(t);
    }
    constexpr double SPEED = 0.0125 * 40 * SECONDS / 0.45; // recorded positions in a recording
    const double rise = std::min(t - 0.5, 0.15);
    return t < 0.8 ? Point{0, static_cast<float>(1.6 + SPEED * rise)} : Point{0, 0};
}

std::string words(Point p)
{
    return " " + std::to_string(p.x) + " " + std::to_string(p.y) + " 0 0 0 0";
}

/// A recording in which the sensors go one path each, three times the same where one is given.
std::string recording(int records, const Path& first, const Path& second, const Path& third)
{
    std::string text;
    for (int i = 0; i < records; ++i) {
        const double t = static_cast<double>(i) / (RECORDS - 1);
        text += std::to_string(i) + words(first(t)) + words(second(t)) + words(third(t)) +
                " 0 0 0 0 0 0\n";
    }
    return text;
}

std::string recording(int records, const Path& path = calm)
{
    return recording(records, path, path, path);
}

class CheckRecordingsTest : public testing::Test {
protected:
    void SetUp() override
    {
        folder.write("data/dance.txt", recording(RECORDS + 1));
        folder.write("data/rehearsal.txt", recording(RECORDS));
    }

    std::vector<FileReport> check(double seconds = SECONDS) const
    {
        return media::checkRecordings(folder.path(), seconds);
    }

    /// What is said of the index that holds this text.
    FileReport indexOf(const std::string& text) const
    {
        folder.write("data/mocap.txt", text);
        return check().front();
    }

    /// What is said of a dance that holds this text.
    FileReport danceOf(const std::string& text) const
    {
        folder.write("data/dance.txt", text);
        return check()[1];
    }

    CheckedFolder folder;
};

TEST_F(CheckRecordingsTest, TheSetIsFine)
{
    const CheckedFolder set;
    const std::vector<FileReport> reports = media::checkRecordings(set.path(), 120);
    ASSERT_EQ(reports.size(), 3u);
    for (const FileReport& report : reports) {
        EXPECT_THAT(report, IsFine()) << report.name;
    }
    EXPECT_EQ(reports[0].summary, "2 recordings, 3 sensors each");
    EXPECT_EQ(reports[1].summary, "10801 records");
}

TEST_F(CheckRecordingsTest, ACalmDanceIsFine)
{
    for (const FileReport& report : check()) {
        EXPECT_THAT(report, IsFine()) << report.name;
    }
}

TEST_F(CheckRecordingsTest, AnIndexThatIsNoneStopsTheScene)
{
    folder.remove("data/mocap.txt");
    EXPECT_THAT(check(), testing::ElementsAre(Says(Mark::stops, "is missing")));
    for (const char* text : {"", "mocap 1 3 data/dance.txt\n", "MOCAPS 1 3 data/dance.txt\n"}) {
        EXPECT_THAT(indexOf(text), Says(Mark::stops, "does not begin with the word MOCAP"));
    }
    for (const char* text : {"MOCAP\n", "MOCAP two 3\n", "MOCAP 1 data/dance.txt\n"}) {
        EXPECT_THAT(indexOf(text), Says(Mark::stops, "does not say after MOCAP how many"));
    }
    folder.makeFolder("data/mocap.txt");
    EXPECT_THAT(check(), testing::ElementsAre(Says(Mark::stops, "is a folder")));
}

TEST_F(CheckRecordingsTest, LineBreaksOfTheIndexMeanNothing)
{
    EXPECT_THAT(indexOf("  MOCAP 2\t3 data/dance.txt data/rehearsal.txt"), IsFine());
}

TEST_F(CheckRecordingsTest, CountsWhatTheIndexNames)
{
    EXPECT_THAT(indexOf("MOCAP 3 3 data/dance.txt data/rehearsal.txt"),
                Says(Mark::stops, "announces 3 recordings and names 2"));
    EXPECT_THAT(indexOf("MOCAP 2 3 data/dance.txt data/rehearsal.txt data/third.txt"),
                Says(Mark::hint, "does not read \"data/third.txt\""));
    EXPECT_EQ(check().size(), 3u);
}

TEST_F(CheckRecordingsTest, MoreThanThreeSensorsLeaveNoSteps)
{
    EXPECT_THAT(indexOf("MOCAP 2 4 data/dance.txt data/rehearsal.txt"),
                Says(Mark::wrong, "the figures do not move"));
}

TEST_F(CheckRecordingsTest, FewerThanThreeSensorsStopTheScene)
{
    EXPECT_THAT(indexOf("MOCAP 2 1 data/dance.txt data/rehearsal.txt"),
                Says(Mark::stops, "gives 2 sensors in all"));
    EXPECT_THAT(indexOf("MOCAP 0 3"), Says(Mark::stops, "gives 0 sensors"));
    EXPECT_THAT(indexOf("MOCAP 1 -3 data/dance.txt"), Says(Mark::stops, "gives 0 sensors"));
    EXPECT_THAT(indexOf("MOCAP -1 3"), Says(Mark::stops, "gives 0 sensors"));
}

TEST_F(CheckRecordingsTest, FiguresMayComeFromDifferentRecordings)
{
    // One sensor of each file: figure 2 follows the first sensor of the third one.
    folder.write("data/third.txt", recording(RECORDS + 1, [](double t) {
                     return t < 0.5 ? Point{0, 0.1f} : Point{0, 2};
                 }));
    folder.write("data/mocap.txt", "MOCAP 4 1 data/dance.txt data/dance.txt data/third.txt "
                                   "data/rehearsal.txt");
    const std::vector<FileReport> reports = check();
    ASSERT_EQ(reports.size(), 5u);
    EXPECT_THAT(reports[0], IsFine());
    EXPECT_THAT(reports[1], IsFine());
    EXPECT_THAT(reports[2], IsFine());
    EXPECT_THAT(reports[3], SaysAlso(Mark::wrong, "figure 2 moves by more than 0.15"));
    EXPECT_THAT(reports[4], IsFine());
}

TEST_F(CheckRecordingsTest, AShownRecordingMustOutlastTheShortest)
{
    const char* text = "needs more records than the shortest recording, which has 900";
    EXPECT_THAT(indexOf("MOCAP 1 3 data/rehearsal.txt"), Says(Mark::stops, text));
    EXPECT_THAT(indexOf("MOCAP 2 3 data/rehearsal.txt data/dance.txt"), Says(Mark::stops, text));
    EXPECT_THAT(indexOf("MOCAP 2 2 data/dance.txt data/rehearsal.txt"), Says(Mark::stops, text))
        << "figure 2 follows the second recording";
}

TEST_F(CheckRecordingsTest, AMissingRecordingStopsTheScene)
{
    folder.remove("data/rehearsal.txt");
    EXPECT_THAT(check()[2], Says(Mark::stops, "is missing; the scene ends as it starts"));
    ASSERT_EQ(mkfifo((folder.path() / "data/rehearsal.txt").c_str(), 0600), 0);
    EXPECT_THAT(check()[2], Says(Mark::stops, "is no regular file"));
}

TEST_F(CheckRecordingsTest, AFolderAndAnEmptyFileCountAsOneRecordOfZeros)
{
    folder.write("data/rehearsal.txt", " \n");
    EXPECT_THAT(check()[2], SaysAlso(Mark::wrong, "holds no numbers"));
    EXPECT_THAT(check()[2], SaysAlso(Mark::wrong, "0.1 records for each second"));
    folder.makeFolder("data/rehearsal.txt");
    EXPECT_THAT(check()[2], SaysAlso(Mark::wrong, "is a folder"));
}

TEST_F(CheckRecordingsTest, ARecordHasTwentyFiveWords)
{
    std::string text = recording(RECORDS + 1);
    text.erase(text.rfind(" 0\n"), 2);
    EXPECT_THAT(danceOf(text), Says(Mark::wrong, "has 22524 words, no multiple of 25"));
    EXPECT_THAT(danceOf(text), Says(Mark::wrong, "all from line 901 on"));
    EXPECT_THAT(danceOf(recording(RECORDS + 1) + "0\n"), SaysAlso(Mark::wrong, "22526 words"));
}

TEST_F(CheckRecordingsTest, AFinalNewlineIsAMatterOfTaste)
{
    std::string text = recording(RECORDS + 1);
    text.pop_back();
    EXPECT_THAT(danceOf(text), Says(Mark::hint, "does not end with a newline"));
}

TEST_F(CheckRecordingsTest, WordsThatAreNoNumbersReadAsSomethingElse)
{
    const std::string good = recording(RECORDS + 1);
    for (const char* word : {"x", "0,5", "1.0.0", "nan", "inf", "1e99", "-"}) {
        std::string text = good;
        // The last record: time, then x of the first sensor.
        const std::size_t line = text.rfind('\n', text.size() - 2) + 1;
        const std::size_t x = text.find(' ', line) + 1;
        text.replace(x, text.find(' ', x) - x, word);
        EXPECT_THAT(danceOf(text), Says(Mark::wrong, "line 901: \"" + std::string(word) + "\""));
    }
    std::string text = good;
    text.replace(text.rfind(" 0\n"), 2, " x");
    EXPECT_THAT(danceOf(text), Says(Mark::hint, "line 901: \"x\"; the scene does not use"));
    text = "one two three " + std::string(100, 'z');
    EXPECT_THAT(danceOf(text), SaysAlso(Mark::wrong, "line 1: \"two\" and 1 more"));
}

TEST_F(CheckRecordingsTest, ARecordingThatIsNotShownOnlyCounts)
{
    std::string text = recording(RECORDS);
    text.replace(0, text.find(' ', 2), "0 x");
    folder.write("data/rehearsal.txt", text);
    EXPECT_THAT(check()[1], IsFine());
    EXPECT_THAT(check()[2], Says(Mark::hint, "line 1: \"x\"; the scene does not use"));
}

TEST_F(CheckRecordingsTest, ARecordingIsAsLongAsTheVoice)
{
    EXPECT_THAT(check(10)[2], IsFine());
    EXPECT_THAT(check(11)[2], Says(Mark::hint, "has 81.8 records for each second of the voice"));
    EXPECT_THAT(check(22)[2], Says(Mark::hint, "has 40.9 records"));
    EXPECT_THAT(check(23)[2], Says(Mark::wrong, "has 39.1 records"));
    EXPECT_THAT(check(0)[2], IsFine()) << "without a voice the recording sets the length";
}

TEST_F(CheckRecordingsTest, ADanceForALongerVoiceRunsTooFast)
{
    EXPECT_THAT(check(9.2)[1], IsFine()) << "1.09 times as fast";
    EXPECT_THAT(check(8)[1],
                Says(Mark::hint, "the recording lasts 10.0 s, the voice 8.0 s: the dance would run "
                                 "1.2 times as fast; kelpix-media --out DIR --only dance"));
    EXPECT_THAT(check(2.5)[1], SaysAlso(Mark::wrong, "the voice 2.5 s: the dance would run 4.0 "));
    EXPECT_THAT(check(2.5)[2], IsFine());

    // 360 records a second, whose times say that they are meant for 2.5 s.
    std::string dense = recording(RECORDS + 1);
    dense.replace(dense.rfind("\n900 ") + 1, 3, "2.5");
    folder.write("data/dance.txt", dense);
    EXPECT_THAT(check(2.5)[1], testing::Not(SaysAlso(Mark::wrong, "the recording lasts")));
}

TEST_F(CheckRecordingsTest, AShortRecordingIsBlamedAndNotTheDanceOfWhichItLeavesABeginning)
{
    folder.write("data/rehearsal.txt", recording(RECORDS / 2));
    EXPECT_THAT(check()[0], IsFine());
    EXPECT_THAT(check()[1], IsFine()) << "though the part that is played ends in the picture";
    EXPECT_THAT(check()[2],
                SaysAlso(Mark::wrong, "has 450 records and data/dance.txt has 901: only "
                                      "the beginning of that dance is played"));
    folder.write("data/rehearsal.txt", recording(RECORDS - 1));
    EXPECT_THAT(check()[1], IsFine());
    EXPECT_THAT(check()[2], SaysAlso(Mark::wrong, "has 899 records and data/dance.txt has 901"));
}

TEST_F(CheckRecordingsTest, FiguresThatMoveTooFastStandStill)
{
    const auto jump = [](double t) { return t < 0.5 ? calm(t) : Point{0.5f, calm(t).y}; };
    // 0.5 recorded is 0.225 in the scene, at 5 seconds.
    const FileReport report = danceOf(recording(RECORDS + 1, calm, jump, calm));
    EXPECT_THAT(report, SaysAlso(Mark::wrong, "figure 1 moves by more than 0.15 in an update, 1 "
                                              "times, first at 5.0 s"));
}

TEST_F(CheckRecordingsTest, HintsAtFiguresThatMoveJaggedly)
{
    const auto quick = [](double t) {
        const double sway = t > 0.25 && t < 0.5 ? 0.2 * std::sin(TURN * 12 * t) : 0;
        return Point{static_cast<float>(sway), calm(t).y};
    };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, quick, calm, calm)),
                Says(Mark::hint, "figure 0 moves by more than 0.012"));
}

TEST_F(CheckRecordingsTest, HintsAtFiguresThatLeaveThePicture)
{
    // Figure 2 stands 0.5 to the right of the left edge: 1.2 recorded to its left is 0.04 outside.
    const auto aside = [](double t) {
        return Point{static_cast<float>(-0.6 * (1 - std::cos(TURN * t))), calm(t).y};
    };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, calm, calm, aside)),
                Says(Mark::hint, "figure 2 leaves the picture"));
}

TEST_F(CheckRecordingsTest, HintsAtFiguresThatTakeTheirFishAlong)
{
    EXPECT_THAT(danceOf(recording(RECORDS + 1, rocking, calm, calm)),
                Says(Mark::hint, "figure 0 leaves through the bottom of the picture, at 8.8 s"));
    // 0.007 an update: the fish keep up.
    const auto slow = [](double t) {
        return t < 0.5 || t > 0.95 ? calm(t) : Point{0, static_cast<float>(1.6 + 6.2 * (t - 0.5))};
    };
    EXPECT_THAT(
        danceOf(recording(RECORDS + 1, calm, slow, calm)),
        Says(Mark::hint, "figure 1 leaves slowly through the top of the picture, at 6.3 s"));
}

TEST_F(CheckRecordingsTest, WhatIsNotSeenMayBeFast)
{
    // Above the picture, and in one update from there to below it.
    const auto hidden = [](double t) {
        return t < 0.66 || t > 0.79 ? calm(t)
                                    : Point{static_cast<int>(t * 100) % 2 == 0 ? 0.6f : -0.6f, 4};
    };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, hidden, calm, calm)), IsFine());
}

TEST_F(CheckRecordingsTest, StraightUpMayBeFaster)
{
    const auto leave = [](double angle) {
        return [angle](double t) {
            const double way = 0.0125 * 40 * SECONDS / 0.45 * (t - 0.5);
            return t < 0.5 || t > 0.65 ? calm(t)
                                       : Point{static_cast<float>(way * std::sin(angle)),
                                               static_cast<float>(1.6 + way * std::cos(angle))};
        };
    };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, leave(0.2), calm, calm)), IsFine());
    EXPECT_THAT(danceOf(recording(RECORDS + 1, leave(0.35), calm, calm)),
                SaysAlso(Mark::hint, "figure 0 moves by more than 0.012"));
}

TEST(CheckMotionTest, AFigureMayGoALittleBelowWhereItRests)
{
    // Recorded positions are scaled by 0.45, and figures rest 0.1 below the picture: -1/9 is 0.15
    // below it, which is as far as they may go.
    const float lowest = -1.0f / 9;
    ASSERT_EQ(lowest * 0.45f - 0.10f, -0.15f);
    const auto remarksFor = [](float lower) {
        FileReport report;
        checkMotion({1, {{0, 0}, {0, 1}, {0, lower}, {0, 0}}, 3, 0.075}, report);
        std::string text;
        for (const FileReport::Remark& remark : report.remarks) {
            text += remark.text + "\n";
        }
        return text;
    };
    EXPECT_THAT(remarksFor(lowest), testing::Not(testing::HasSubstr("leaves the picture")));
    EXPECT_THAT(remarksFor(-0.112f), testing::HasSubstr("leaves the picture"));
}

TEST_F(CheckRecordingsTest, AFigureIsSeenAtSomeTime)
{
    const auto rest = [](double) { return Point{0, 0}; };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, rest, calm, calm)),
                Says(Mark::wrong, "figure 0 is never in the picture"));
}

TEST_F(CheckRecordingsTest, HintsAtADanceThatDoesNotBeginAndEndAtRest)
{
    const auto late = [](double t) { return calm(std::max(t, 0.25)); };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, late, calm, calm)),
                Says(Mark::hint, "record 0 of figure 0 is not at 0 0"));
    const auto early = [](double t) { return calm(t * 0.5); };
    EXPECT_THAT(danceOf(recording(RECORDS + 1, early, calm, calm)),
                Says(Mark::hint, "figure 0 does not end at 0 0"));
}

} // namespace
