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

} // namespace record

namespace {

using record::Input;
using record::Script;
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
    EXPECT_THAT(parse("").inputs, IsEmpty());
    EXPECT_THAT(parse("# nothing\n\n  \t \n#\n   # more\r\n").inputs, IsEmpty());
    EXPECT_THAT(parse("1 move 2 3# there").inputs, ElementsAre(Input{40, FL_MOVE, 2, 3, 0, 0}));
}

TEST(RecordScriptTest, MovesThePointer)
{
    EXPECT_THAT(parse("0.01 move -5 32767\n").inputs,
                ElementsAre(Input{1, FL_MOVE, -5, 32767, 0, 0}));
}

TEST(RecordScriptTest, ClicksWithTheRightButton)
{
    EXPECT_THAT(parse("1 click 100 200").inputs,
                ElementsAre(Input{40, FL_PUSH, 100, 200, RIGHT, 0},
                            Input{40, FL_RELEASE, 100, 200, RIGHT, 0}));
}

TEST(RecordScriptTest, TurnsTheWheelWhereThePointerIs)
{
    EXPECT_THAT(parse("0 move 7 8\n0 wheel up\n1 wheel down 2").inputs,
                ElementsAre(Input{0, FL_MOVE, 7, 8, 0, 0},
                            Input{0, FL_MOUSEWHEEL, 7, 8, FL_Button + 4, -1},
                            Input{40, FL_MOUSEWHEEL, 7, 8, FL_Button + 5, 1},
                            Input{40, FL_MOUSEWHEEL, 7, 8, FL_Button + 5, 1}));
}

TEST(RecordScriptTest, PressesKeys)
{
    EXPECT_THAT(parse("1 key space\n2 key x").inputs,
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
        parse("1 drag v 10 20 110 -20 0.1").inputs,
        ElementsAre(Input{40, FL_MOVE, 10, 20, 0, 0}, Input{40, FL_PUSH, 10, 20, LEFT, 0},
                    Input{40, FL_KEYDOWN, 10, 20, 'v', 0}, Input{41, FL_DRAG, 35, 10, 'v', 0},
                    Input{42, FL_DRAG, 60, 0, 'v', 0}, Input{43, FL_DRAG, 85, -10, 'v', 0},
                    Input{44, FL_DRAG, 110, -20, 'v', 0}, Input{44, FL_KEYUP, 110, -20, 'v', 0},
                    Input{44, FL_RELEASE, 110, -20, LEFT, 0}));
}

TEST(RecordScriptTest, ADragOfNoTimeIsOneMove)
{
    EXPECT_THAT(parse("1 drag z 0 0 0 90 0").inputs,
                ElementsAre(Input{40, FL_MOVE, 0, 0, 0, 0}, Input{40, FL_PUSH, 0, 0, LEFT, 0},
                            Input{40, FL_KEYDOWN, 0, 0, 'z', 0}, Input{40, FL_DRAG, 0, 90, 'z', 0},
                            Input{40, FL_KEYUP, 0, 90, 'z', 0},
                            Input{40, FL_RELEASE, 0, 90, LEFT, 0}));
}

TEST(RecordScriptTest, TheWheelTurnsDuringADrag)
{
    const Script script = parse("0 drag v 0 0 40 0 0.1\n0.05 wheel up\n0.1 key x");
    std::vector<std::int64_t> steps;
    for (const Input& input : script.inputs) {
        steps.push_back(input.step);
    }
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    const auto wheel = std::find_if(script.inputs.begin(), script.inputs.end(),
                                    [](const Input& input) { return input.wheel != 0; });
    ASSERT_NE(wheel, script.inputs.end());
    EXPECT_EQ(wheel->step, 2);
}

TEST(RecordScriptTest, KeepsTheOrderOfAnyNumberOfInputsAtOneTime)
{
    std::string text;
    for (int x = 0; x < 100; ++x) {
        text += "0 move " + std::to_string(x) + " 0\n";
    }
    const Script script = parse(text);
    EXPECT_TRUE(std::is_sorted(script.inputs.begin(), script.inputs.end(),
                               [](const Input& a, const Input& b) { return a.x < b.x; }));
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
        {"1", "what happens (move, click, wheel, key or drag) is missing"},
        {"1 jump", "\"jump\" is none of move, click, wheel, key and drag"},
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

TEST(RecordScriptTest, TheGuidesExampleMakesSense)
{
    std::ifstream file(KELPIX_RECORDING_GUIDE);
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    const std::string start = "```text look-around.txt\n";
    const std::size_t from = guide.find(start);
    ASSERT_NE(from, std::string::npos);
    const std::size_t to = guide.find("```", from + start.size());
    const std::string example = guide.substr(from + start.size(), to - from - start.size());
    EXPECT_EQ(parse(example).endStep, 400);
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
