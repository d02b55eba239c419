#include "Inbox.h"

#include <gmock/gmock.h>
#include <string>

namespace {

using namespace std::chrono_literals;
using osc::Command;
using osc::Counts;
using osc::IMMEDIATELY;
using osc::Inbox;
using osc::Reading;
using osc::TimeTag;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = Command::Kind;

constexpr TimeTag SECOND = 1ULL << 32;
/// The time of day when the steady clock is at 0.
constexpr TimeTag START = 3900000000ULL << 32;

/// A moment so many seconds after the start.
osc::Moment at(unsigned seconds)
{
    return {START + seconds * SECOND, std::chrono::seconds(seconds)};
}

Command place(int figure, float x)
{
    return {Kind::FIGURE, figure, x, 0};
}

Command release(int figure)
{
    return {Kind::RELEASE, figure};
}

Command click(float x)
{
    return {Kind::CLICK, 0, x, 0};
}

Command seed(std::uint32_t number)
{
    return {Kind::SEED, 0, 0, 0, number};
}

const Command RESTART = {Kind::RESTART};

Reading packet(const std::vector<Command>& commands, TimeTag due = IMMEDIATELY)
{
    Reading reading;
    for (const Command& command : commands) {
        reading.commands.push_back({command, due});
    }
    reading.counts.packets = 1;
    reading.counts.messages = commands.size();
    return reading;
}

/// What is taken, in short: "figure 0 0.5", "release 1", "click 0.5", "seed 7", "restart".
std::vector<std::string> taken(Inbox& inbox, nanoseconds now)
{
    std::vector<std::string> lines;
    for (const Command& command : inbox.take(now)) {
        const std::string figure = std::to_string(command.figure);
        const std::string x = std::to_string(command.x).substr(0, 3);
        switch (command.kind) {
        case Kind::FIGURE:
            lines.push_back("figure " + figure + " " + x);
            break;
        case Kind::RELEASE:
            lines.push_back("release " + figure);
            break;
        case Kind::SEED:
            lines.push_back("seed " + std::to_string(command.seed));
            break;
        case Kind::RESTART:
            lines.emplace_back("restart");
            break;
        default:
            lines.push_back("click " + x);
        }
    }
    return lines;
}

} // namespace

TEST(OscInboxTest, OfEachFigureTheNewestPlaceIsKept)
{
    Inbox inbox;
    inbox.add(packet({place(0, 0.1F), place(1, 0.2F)}), at(0));
    inbox.add(packet({place(2, 0.3F), place(0, 0.4F)}), at(0));
    EXPECT_THAT(taken(inbox, 0s), ElementsAre("figure 1 0.2", "figure 2 0.3", "figure 0 0.4"));
    EXPECT_THAT(taken(inbox, 0s), IsEmpty());
    EXPECT_EQ(inbox.counts().messages, 4U);
    EXPECT_EQ(inbox.counts().packets, 2U);
    EXPECT_EQ(inbox.counts().dropped, 0U);
}

TEST(OscInboxTest, APlaceOrAReleaseWhicheverIsNewer)
{
    Inbox inbox;
    inbox.add(packet({place(0, 0.1F), release(0), release(1), place(1, 0.2F)}), at(0));
    EXPECT_THAT(taken(inbox, 0s), ElementsAre("release 0", "figure 1 0.2"));
}

TEST(OscInboxTest, TheOthersAreKeptInTheirOrder)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F), place(0, 0.2F), click(0.3F), RESTART, click(0.4F)}), at(0));
    EXPECT_THAT(taken(inbox, 0s),
                ElementsAre("click 0.1", "figure 0 0.2", "click 0.3", "restart", "click 0.4"));
}

TEST(OscInboxTest, ButNotMoreThan256)
{
    Inbox inbox;
    for (int i = 0; i < 300; ++i) {
        inbox.add(packet({click(i == 0 ? 0.1F : 0.2F), place(0, 0.3F)}), at(0));
    }
    std::vector<std::string> lines = taken(inbox, 0s);
    EXPECT_THAT(lines, SizeIs(257));
    EXPECT_EQ(lines.front(), "click 0.1");
    EXPECT_EQ(lines.back(), "figure 0 0.3");
    EXPECT_EQ(inbox.counts().full, 44U);
    EXPECT_EQ(inbox.counts().dropped, 44U);

    inbox.add(packet({click(0.5F)}), at(0));
    EXPECT_THAT(taken(inbox, 0s), ElementsAre("click 0.5"));
}

TEST(OscInboxTest, ABundleWaitsForItsTime)
{
    Inbox inbox;
    inbox.add(packet({place(0, 0.1F), click(0.2F)}, START + 11 * SECOND), at(10));
    inbox.add(packet({place(1, 0.5F)}, START + 10 * SECOND + SECOND / 4), at(10));
    EXPECT_THAT(taken(inbox, 10s + 249999999ns), IsEmpty());
    EXPECT_THAT(taken(inbox, 10s + 250ms), ElementsAre("figure 1 0.5"));
    EXPECT_THAT(taken(inbox, 11s - 1ns), IsEmpty());
    EXPECT_THAT(taken(inbox, 11s), ElementsAre("figure 0 0.1", "click 0.2"));
    EXPECT_THAT(taken(inbox, 12s), IsEmpty());
    EXPECT_EQ(inbox.counts().late, 0U);
    EXPECT_EQ(inbox.counts().dropped, 0U);
}

TEST(OscInboxTest, WhatComesDueTogetherKeepsTheOrderOfItsTimes)
{
    Inbox inbox;
    inbox.add(packet({click(0.3F)}, START + 3 * SECOND), at(0));
    inbox.add(packet({click(0.1F)}, START + 1 * SECOND), at(0));
    inbox.add(packet({click(0.4F), click(0.5F)}, START + 3 * SECOND), at(0));
    inbox.add(packet({click(0.2F)}), at(2));
    EXPECT_THAT(taken(inbox, 4s),
                ElementsAre("click 0.1", "click 0.2", "click 0.3", "click 0.4", "click 0.5"));
}

TEST(OscInboxTest, ThePlaceThatIsDueLastIsTheNewest)
{
    Inbox inbox;
    inbox.add(packet({place(0, 0.1F)}, START + 1 * SECOND), at(0));
    inbox.add(packet({place(1, 0.1F)}, START + 3 * SECOND), at(0));
    inbox.add(packet({place(0, 0.2F), place(1, 0.2F)}), at(2));
    EXPECT_THAT(taken(inbox, 4s), ElementsAre("figure 0 0.2", "figure 1 0.1"));
}

TEST(OscInboxTest, LateBundlesAreDoneAtOnce)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F), click(0.2F)}, START + 9 * SECOND), at(10));
    inbox.add(packet({click(0.3F)}, START + 10 * SECOND), at(10));
    inbox.add(packet({click(0.4F)}, 2208988800 * SECOND), at(10));
    EXPECT_THAT(taken(inbox, 10s), ElementsAre("click 0.1", "click 0.2", "click 0.3", "click 0.4"));
    EXPECT_EQ(inbox.counts().late, 3U);
    EXPECT_EQ(inbox.counts().dropped, 0U);
}

TEST(OscInboxTest, NoBundleIsForMoreThanAMinuteAhead)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F)}, START + 60 * SECOND), at(0));
    inbox.add(packet({click(0.2F), click(0.3F)}, START + 60 * SECOND + SECOND / 1000), at(0));
    EXPECT_EQ(inbox.counts().early, 2U);
    EXPECT_EQ(inbox.counts().dropped, 2U);
    EXPECT_THAT(taken(inbox, 3600s), ElementsAre("click 0.1"));
}

TEST(OscInboxTest, NotMoreThan4096Wait)
{
    Inbox inbox;
    for (int i = 0; i < 5000; ++i) {
        inbox.add(packet({place(0, 0.1F)}, START + SECOND), at(0));
    }
    EXPECT_EQ(inbox.counts().full, 904U);
    EXPECT_THAT(taken(inbox, 1s), ElementsAre("figure 0 0.1"));
    inbox.add(packet({place(0, 0.2F)}, START + 3 * SECOND), at(2));
    EXPECT_THAT(taken(inbox, 3s), ElementsAre("figure 0 0.2"));
    EXPECT_EQ(inbox.counts().full, 904U);
}

TEST(OscInboxTest, WhatIsQueuedIsBoundedWhenItComesDueToo)
{
    Inbox inbox;
    inbox.add(packet(std::vector<Command>(300, click(0.1F)), START + SECOND), at(0));
    EXPECT_EQ(inbox.counts().full, 0U);
    EXPECT_THAT(taken(inbox, 1s), SizeIs(256));
    EXPECT_EQ(inbox.counts().full, 44U);
}

TEST(OscInboxTest, SettingTheClockMovesNothingThatWaits)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F)}, START + 10 * SECOND), at(0));
    // An hour on, an hour back, by the time of day.
    inbox.add(packet({click(0.2F)}), {START + 3600 * SECOND, 1s});
    inbox.add(packet({click(0.3F)}), {START - 3600 * SECOND, 2s});
    EXPECT_THAT(taken(inbox, 10s - 1ns), ElementsAre("click 0.2", "click 0.3"));
    EXPECT_THAT(taken(inbox, 10s), ElementsAre("click 0.1"));
}

TEST(OscInboxTest, TimeTagsBeginAnewIn2036)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F)}, SECOND / 2), {0xFFFFFFFF80000000, 5s});
    EXPECT_THAT(taken(inbox, 6s - 1ns), IsEmpty());
    EXPECT_THAT(taken(inbox, 6s), ElementsAre("click 0.1"));

    const std::chrono::system_clock::time_point landing(14182940s +
                                                        250ms); // 1970-06-14T03:42:20.25
    EXPECT_EQ(osc::timeTagOf(landing), (2208988800ULL + 14182940) * SECOND + SECOND / 4);
}

TEST(OscInboxTest, ASeedWinsOverARestart)
{
    Inbox inbox;
    inbox.add(packet({RESTART, RESTART}), at(0));
    EXPECT_THAT(taken(inbox, 0s), ElementsAre("restart"));
    EXPECT_THAT(taken(inbox, 1s), IsEmpty());
    inbox.add(packet({seed(1), seed(7), RESTART}), at(10));
    EXPECT_THAT(taken(inbox, 10s), ElementsAre("seed 7"));
    EXPECT_THAT(taken(inbox, 11s), IsEmpty());
    inbox.add(packet({RESTART, seed(8)}), at(20));
    EXPECT_THAT(taken(inbox, 20s), ElementsAre("seed 8"));
    EXPECT_EQ(inbox.counts().dropped, 0U);
}

TEST(OscInboxTest, TheScenePlaysASecondBeforeItBeginsAnewAgain)
{
    Inbox inbox;
    inbox.add(packet({seed(1)}), at(0));
    EXPECT_THAT(taken(inbox, 0s), ElementsAre("seed 1"));
    // Which took five seconds.
    inbox.add(packet({seed(2), click(0.1F)}), at(4));
    EXPECT_THAT(taken(inbox, 5s), ElementsAre("click 0.1"));
    inbox.add(packet({click(0.1F)}), at(5));
    inbox.add(packet({seed(3)}), at(5));
    EXPECT_THAT(taken(inbox, 6s - 1ns), ElementsAre("click 0.1"));
    inbox.add(packet({place(0, 0.5F)}), at(6));
    EXPECT_THAT(taken(inbox, 6s), ElementsAre("seed 3", "figure 0 0.5"));
    EXPECT_THAT(taken(inbox, 100s), IsEmpty());
}

TEST(OscInboxTest, ACommandTellsWhenItCameDue)
{
    Inbox inbox;
    inbox.add(packet({click(0.1F)}), at(5));
    inbox.add(packet({click(0.2F)}, START + 7 * SECOND), at(5));
    const std::vector<Command> commands = inbox.take(9s);
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].due, 5s);
    EXPECT_EQ(commands[1].due, 7s);
}

TEST(OscInboxTest, WhatTheReaderCountedIsAddedUp)
{
    Reading reading;
    reading.counts.packets = 1;
    reading.counts.malformed = 1;
    reading.counts.messages = 9;
    reading.counts.unknown = 3;
    reading.counts.refused = 4;
    Inbox inbox;
    inbox.add(reading, at(0));
    inbox.add(reading, at(0));
    const Counts counts = inbox.counts();
    EXPECT_EQ(counts.packets, 2U);
    EXPECT_EQ(counts.malformed, 2U);
    EXPECT_EQ(counts.messages, 18U);
    EXPECT_EQ(counts.unknown, 6U);
    EXPECT_EQ(counts.refused, 8U);
    EXPECT_EQ(counts.dropped, 14U);
}
