#include "Options.h"
#include "Script.h"

#include <FL/Enumerations.H>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace record {

void PrintTo(const Input& input, std::ostream* out)
{
    *out << "{step " << input.step << ", event " << input.event << ", at " << input.x << " "
         << input.y << ", key " << input.key << ", wheel " << input.wheel << "}";
}

void PrintTo(const Zoom& zoom, std::ostream* out)
{
    *out << "{step " << zoom.step << ", zoom " << zoom.factor << "}";
}

void PrintTo(const Pan& pan, std::ostream* out)
{
    *out << "{step " << pan.step << ", pan " << pan.x << " " << pan.y << "}";
}

} // namespace record

namespace {

using record::Input;
using record::Pan;
using record::Script;
using record::Zoom;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int LEFT = FL_Button + FL_LEFT_MOUSE;
constexpr int RIGHT = FL_Button + FL_RIGHT_MOUSE;

Script parse(const std::string& text)
{
    std::istringstream stream(text);
    return Script::parse(stream, "script.txt");
}

std::string errorOf(const std::string& text)
{
    try {
        parse(text);
    } catch (const record::ScriptError& error) {
        return error.what();
    }
    return "no error";
}

TEST(RecordScriptTest, LeavesOutCommentsAndEmptyLines)
{
    EXPECT_THAT(parse("").acts, IsEmpty());
    EXPECT_THAT(parse("# nothing\n\n  \t \n#\n   # more\r\n").acts, IsEmpty());
    EXPECT_THAT(parse("1 move 2 3# there").acts, ElementsAre(Input{40, FL_MOVE, 2, 3, 0, 0}));
}

TEST(RecordScriptTest, MovesThePointer)
{
    EXPECT_THAT(parse("0.01 move -5 32767\n").acts,
                ElementsAre(Input{1, FL_MOVE, -5, 32767, 0, 0}));
}

TEST(RecordScriptTest, ClicksWithTheRightButton)
{
    EXPECT_THAT(parse("1 click 100 200").acts,
                ElementsAre(Input{40, FL_PUSH, 100, 200, RIGHT, 0},
                            Input{40, FL_RELEASE, 100, 200, RIGHT, 0}));
}

TEST(RecordScriptTest, TurnsTheWheelWhereThePointerIs)
{
    EXPECT_THAT(parse("0 move 7 8\n0 wheel up\n1 wheel down 2").acts,
                ElementsAre(Input{0, FL_MOVE, 7, 8, 0, 0},
                            Input{0, FL_MOUSEWHEEL, 7, 8, FL_Button + 4, -1},
                            Input{40, FL_MOUSEWHEEL, 7, 8, FL_Button + 5, 1},
                            Input{40, FL_MOUSEWHEEL, 7, 8, FL_Button + 5, 1}));
}

TEST(RecordScriptTest, PressesKeys)
{
    EXPECT_THAT(parse("1 key space\n2 key x").acts,
                ElementsAre(Input{40, FL_KEYDOWN, 0, 0, ' ', 0}, Input{40, FL_KEYUP, 0, 0, ' ', 0},
                            Input{80, FL_KEYDOWN, 0, 0, 'x', 0},
                            Input{80, FL_KEYUP, 0, 0, 'x', 0}));
}

TEST(RecordScriptTest, QEndsTheScene)
{
    EXPECT_EQ(parse("1 key x").endStep, std::nullopt);
    EXPECT_EQ(parse("1.01 key q\n3 key Q").endStep, 41);
    EXPECT_EQ(parse("3 key Q").endStep, 120);
}

TEST(RecordScriptTest, DragsStepByStepWhileAKeyIsHeld)
{
    EXPECT_THAT(
        parse("1 drag v 10 20 110 -20 0.1").acts,
        ElementsAre(Input{40, FL_MOVE, 10, 20, 0, 0}, Input{40, FL_PUSH, 10, 20, LEFT, 0},
                    Input{40, FL_KEYDOWN, 10, 20, 'v', 0}, Input{41, FL_DRAG, 35, 10, 'v', 0},
                    Input{42, FL_DRAG, 60, 0, 'v', 0}, Input{43, FL_DRAG, 85, -10, 'v', 0},
                    Input{44, FL_DRAG, 110, -20, 'v', 0}, Input{44, FL_KEYUP, 110, -20, 'v', 0},
                    Input{44, FL_RELEASE, 110, -20, LEFT, 0}));
}

TEST(RecordScriptTest, ADragOfNoTimeIsOneMove)
{
    EXPECT_THAT(parse("1 drag z 0 0 0 90 0").acts,
                ElementsAre(Input{40, FL_MOVE, 0, 0, 0, 0}, Input{40, FL_PUSH, 0, 0, LEFT, 0},
                            Input{40, FL_KEYDOWN, 0, 0, 'z', 0}, Input{40, FL_DRAG, 0, 90, 'z', 0},
                            Input{40, FL_KEYUP, 0, 90, 'z', 0},
                            Input{40, FL_RELEASE, 0, 90, LEFT, 0}));
}

TEST(RecordScriptTest, TheWheelTurnsDuringADrag)
{
    const Script script = parse("0 drag v 0 0 40 0 0.1\n0.05 wheel up\n0.1 key x");
    EXPECT_TRUE(std::is_sorted(
        script.acts.begin(), script.acts.end(),
        [](const record::Act& a, const record::Act& b) { return stepOf(a) < stepOf(b); }));
    const auto wheel =
        std::find_if(script.acts.begin(), script.acts.end(),
                     [](const record::Act& act) { return std::get<Input>(act).wheel != 0; });
    ASSERT_NE(wheel, script.acts.end());
    EXPECT_EQ(stepOf(*wheel), 2);
}

TEST(RecordScriptTest, KeepsTheOrderOfAnyNumberOfInputsAtOneTime)
{
    std::string text;
    for (int x = 0; x < 100; ++x) {
        text += "0 move " + std::to_string(x) + " 0\n";
    }
    const Script script = parse(text);
    EXPECT_TRUE(std::is_sorted(script.acts.begin(), script.acts.end(),
                               [](const record::Act& a, const record::Act& b) {
                                   return std::get<Input>(a).x < std::get<Input>(b).x;
                               }));
}

TEST(RecordScriptTest, NamesFileAndLineOfWhatIsWrong)
{
    EXPECT_EQ(errorOf("# a\n1 move 1 1\n\nsoon move 1 1"),
              "script.txt:4: a line begins with a time in seconds, such as 12.5, not \"soon\"");
}

TEST(RecordScriptTest, SaysWhatIsWrong)
{
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"-1 move 1 1", "a line begins with a time in seconds, such as 12.5, not \"-1\""},
        {"1e3 key v", "a line begins with a time in seconds, such as 12.5, not \"1e3\""},
        {"40000 key v", "a line begins with a time in seconds, such as 12.5, not \"40000\""},
        {"1", "what happens (move, click, wheel, key, drag or glide) is missing"},
        {"1 jump", "\"jump\" is none of move, click, wheel, key, drag and glide"},
        {"1 move", "x is missing"},
        {"1 move 1", "y is missing"},
        {"1 move a 1", "x is a whole number from -32767 to 32767, not \"a\""},
        {"1 move 1 1.5", "y is a whole number from -32767 to 32767, not \"1.5\""},
        {"1 move 1 40000", "y is a whole number from -32767 to 32767, not \"40000\""},
        {"1 move 1 1 1", "\"1\" is one word too many"},
        {"1 click 1", "y is missing"},
        {"1 wheel", "the direction is missing"},
        {"1 wheel left", "the wheel goes up or down, not \"left\""},
        {"1 wheel up 0", "the count is a whole number from 1 to 100, not \"0\""},
        {"1 wheel up 101", "the count is a whole number from 1 to 100, not \"101\""},
        {"1 wheel up 1 1", "\"1\" is one word too many"},
        {"1 key", "the key is missing"},
        {"1 key vv", "a key is a character or \"space\", not \"vv\""},
        {"1 key \x7f", "a key is a character or \"space\", not \"\x7f\""},
        {"1 drag", "the key is missing"},
        {"1 drag v 1 1 1", "y is missing"},
        {"1 drag v 1 1 1 1", "how many seconds the drag lasts is missing"},
        {"1 drag v 1 1 1 1 long", "a drag lasts 0 to 36000 seconds, not \"long\""},
        {"1 drag v 1 1 1 1 1 1", "\"1\" is one word too many"},
        {"1 glide", "what glides (zoom or pan) is missing"},
        {"1 glide turn", "a glide is a zoom or a pan, not \"turn\""},
        {"1 glide zoom", "the first factor is missing"},
        {"1 glide zoom 0 1 1", "the first factor is a number from 0.01 to 100, not \"0\""},
        {"1 glide zoom -1 1 1", "the first factor is a number from 0.01 to 100, not \"-1\""},
        {"1 glide zoom nan 1 1", "the first factor is a number from 0.01 to 100, not \"nan\""},
        {"1 glide zoom 1", "the last factor is missing"},
        {"1 glide zoom 1 100.5 1", "the last factor is a number from 0.01 to 100, not \"100.5\""},
        {"1 glide zoom 1 2", "how many seconds the zoom lasts is missing"},
        {"1 glide zoom 1 2 -1", "a zoom lasts 0 to 36000 seconds, not \"-1\""},
        {"1 glide zoom 1 2 3 4", "\"4\" is one word too many"},
        {"1 glide pan", "x is missing"},
        {"1 glide pan 0 0 middle 0 1", "x is a number from -100 to 100, not \"middle\""},
        {"1 glide pan 0 inf 0 0 1", "y is a number from -100 to 100, not \"inf\""},
        {"1 glide pan 0 0 0 0", "how many seconds the pan lasts is missing"},
        {"1 glide pan 0 0 0 0 forever", "a pan lasts 0 to 36000 seconds, not \"forever\""},
    };
    for (const auto& [line, message] : lines) {
        EXPECT_EQ(errorOf(line), "script.txt:1: " + message) << line;
    }
}

TEST(RecordScriptTest, WantsItsLinesInTheOrderOfTime)
{
    EXPECT_EQ(errorOf("2 key v\n1.5 key v"),
              "script.txt:2: the time 1.5 is before that of the line above");
    EXPECT_EQ(errorOf("2 key v\n2.0 key v"), "no error");
}

TEST(RecordScriptTest, HasOneHandForPointerAndKeys)
{
    for (const char* act : {"move 1 1", "click 1 1", "key v", "drag z 1 1 1 1 1"}) {
        EXPECT_EQ(errorOf(std::string("1 drag v 0 0 9 9 2\n2.9 ") + act),
                  "script.txt:2: the drag of line 1 has not ended yet")
            << act;
        EXPECT_EQ(errorOf(std::string("1 drag v 0 0 9 9 2\n3 ") + act), "no error") << act;
    }
}

// 3 u^2 - 2 u^3 is 5/32, 1/2 and 27/32 at the quarters; 16 to these powers is 2^(5/8), 4 and
// 2^(27/8).
TEST(RecordScriptTest, GlidesFromOneZoomToTheOtherInEqualRatios)
{
    EXPECT_THAT(parse("1 glide zoom 1 16 0.1").acts,
                ElementsAre(Zoom{40, 1}, Zoom{41, 1.54221082F}, Zoom{42, 4}, Zoom{43, 10.3747168F},
                            Zoom{44, 16}));
    EXPECT_THAT(parse("0 glide zoom 4 1 0.05").acts,
                ElementsAre(Zoom{0, 4}, Zoom{1, 2}, Zoom{2, 1}));
}

TEST(RecordScriptTest, GlidesFromOnePlaceToTheOtherInEqualDifferences)
{
    EXPECT_THAT(parse("1 glide pan 0.5 0.5 0.75 -0.5 0.1").acts,
                ElementsAre(Pan{40, 0.5F, 0.5F}, Pan{41, 0.5390625F, 0.34375F}, Pan{42, 0.625F, 0},
                            Pan{43, 0.7109375F, -0.34375F}, Pan{44, 0.75F, -0.5F}));
}

TEST(RecordScriptTest, AGlideOfNoTimeIsItsEnd)
{
    EXPECT_THAT(parse("1 glide zoom 1 1.1 0\n1 glide pan 0 0 0.1 0.7 0").acts,
                ElementsAre(Zoom{40, 1.1F}, Pan{40, 0.1F, 0.7F}));
}

TEST(RecordScriptTest, WhatFollowsAGlideComesAfterItsLastMoment)
{
    EXPECT_THAT(parse("0 glide zoom 1 2 0.025\n0.025 wheel up\n0.025 glide zoom 3 4 0.025").acts,
                ElementsAre(Zoom{0, 1}, Zoom{1, 2},
                            Input{1, FL_MOUSEWHEEL, 0, 0, FL_Button + 4, -1}, Zoom{1, 3},
                            Zoom{2, 4}));
}

TEST(RecordScriptTest, NothingActsAgainstAGlide)
{
    const auto during = [](const std::string& first, const std::string& second) {
        return errorOf("1 " + first + " 2\n2.9 " + second);
    };
    const std::string zoom = "glide zoom 1 2";
    const std::string pan = "glide pan 0 0 1 1";
    EXPECT_EQ(during(zoom, "wheel up"), "script.txt:2: the zoom of line 1 has not ended yet");
    EXPECT_EQ(during(zoom, zoom + " 1"), "script.txt:2: the zoom of line 1 has not ended yet");
    EXPECT_EQ(during(pan, pan + " 1"), "script.txt:2: the pan of line 1 has not ended yet");
    EXPECT_EQ(during(pan, "drag v 0 0 1 1 1"), "script.txt:2: the pan of line 1 has not ended yet");
    EXPECT_EQ(during("drag v 0 0 1 1", pan + " 1"),
              "script.txt:2: the drag of line 1 has not ended yet");
    for (const std::string& other : {pan + " 1", std::string("drag v 0 0 1 1 1"),
                                     std::string("key x"), std::string("move 1 1")}) {
        EXPECT_EQ(during(zoom, other), "no error") << other;
    }
    for (const std::string& other : {zoom + " 1", std::string("drag z 0 0 1 1 1"),
                                     std::string("wheel up"), std::string("click 1 1")}) {
        EXPECT_EQ(during(pan, other), "no error") << other;
    }
    for (const std::string& other : {zoom + " 1", pan + " 1", std::string("wheel up")}) {
        EXPECT_EQ(during("drag z 0 0 1 1", other), "no error") << other;
    }
}

TEST(RecordScriptTest, SaysWhichFileCannotBeRead)
{
    try {
        Script::read("/nowhere/script.txt");
        FAIL();
    } catch (const record::ScriptError& error) {
        EXPECT_STREQ(error.what(), "cannot read /nowhere/script.txt: No such file or directory");
    }
    for (const std::string path : {"/proc", "/dev/zero"}) {
        try {
            Script::read(path);
            FAIL();
        } catch (const record::ScriptError& error) {
            EXPECT_EQ(error.what(), "cannot read " + path + ": not a file");
        }
    }
}

TEST(RecordScriptTest, TheGuidesExamplesMakeSense)
{
    std::ifstream file(KELPIX_RECORDING_GUIDE);
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    const auto example = [&](const std::string& name) {
        const std::string start = "```text " + name + "\n";
        const std::size_t from = guide.find(start) + start.size();
        return guide.substr(from, guide.find("```", from) - from);
    };
    EXPECT_EQ(parse(example("look-around.txt")).endStep, 400);
    EXPECT_EQ(parse(example("ride.txt")).endStep, 560);
    // The error that the guide shows is the one that this line brings.
    const std::string wrong = "\n\n\n1 wheel left";
    EXPECT_THAT(guide, testing::HasSubstr("look-around.txt" + errorOf(wrong).substr(10)));
}

TEST(RecordScriptTest, ReadsAnyBytesWithoutHarm)
{
    std::string bytes;
    unsigned state = 1;
    for (int i = 0; i < 20000; ++i) {
        state = state * 1103515245 + 12345;
        bytes += static_cast<char>(state >> 16);
    }
    EXPECT_THAT(errorOf(bytes), testing::StartsWith("script.txt:"));
}

} // namespace
