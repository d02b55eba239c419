#include "Script.h"

#include "CommandLine.h"
#include "Schedule.h"

#include <FL/Enumerations.H>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

namespace record {

namespace {

constexpr int FARTHEST = 32767; // of X's coordinates
constexpr int MOST_WHEEL_STEPS = 100;

struct Place {
    int x = 0;
    int y = 0;
};

/// Reads a script line by line. Its errors have neither file nor line number yet.
class Parser {
public:
    Script script;

    void readLine(const std::string& line, int number);

    /// Sorts the inputs: a drag has inputs after those of the lines that follow it.
    void finish();

private:
    std::vector<std::string> words; ///< of the line
    std::size_t next = 0;           ///< the word to be read
    Place pointer;
    Microseconds now = 0;
    Microseconds dragEnd = 0;
    int dragLine = 0; ///< 0 = no drag yet

    [[noreturn]] static void refuse(const std::string& what) { throw ScriptError(what); }
    const std::string& word(const char* what);
    int number(const char* what, int low, int high);
    Place place();
    int key();
    void readTime();
    void readAct(int lineNumber);

    void move();
    void click();
    void wheel();
    void press();
    void drag(int lineNumber);
    void add(std::int64_t step, int event, int key, int wheelSteps = 0);
};

void Parser::readLine(const std::string& line, int number)
{
    std::istringstream text(line.substr(0, line.find('#')));
    words.clear();
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
    next = 0;
    if (words.empty()) {
        return;
    }
    readTime();
    readAct(number);
    if (next < words.size()) {
        refuse("\"" + words[next] + "\" is one word too many");
    }
}

void Parser::finish()
{
    std::stable_sort(script.inputs.begin(), script.inputs.end(),
                     [](const Input& a, const Input& b) { return a.step < b.step; });
}

const std::string& Parser::word(const char* what)
{
    if (next == words.size()) {
        refuse(std::string(what) + " is missing");
    }
    return words[next++];
}

int Parser::number(const char* what, int low, int high)
{
    const std::string& text = word(what);
    int value = 0;
    if (!commandline::readNumber(text, low, high, value)) {
        refuse(std::string(what) + " is " + commandline::rangeOf(low, high) + ", not \"" + text +
               "\"");
    }
    return value;
}

Place Parser::place()
{
    const int x = number("x", -FARTHEST, FARTHEST);
    const int y = number("y", -FARTHEST, FARTHEST);
    return {x, y};
}

int Parser::key()
{
    const std::string& text = word("the key");
    if (text == "space") {
        return ' ';
    }
    if (text.size() != 1 || text[0] < '!' || text[0] > '~') {
        refuse("a key is a character or \"space\", not \"" + text + "\"");
    }
    return text[0];
}

void Parser::readTime()
{
    const std::string& text = word("the time");
    const auto time = parseTime(text);
    if (!time) {
        refuse("a line begins with a time in seconds, such as 12.5, not \"" + text + "\"");
    }
    if (*time < now) {
        refuse("the time " + text + " is before that of the line above");
    }
    now = *time;
}

void Parser::readAct(int lineNumber)
{
    const std::string& act = word("what happens (move, click, wheel, key or drag)");
    if (act == "wheel") {
        wheel();
        return;
    }
    if (now < dragEnd) {
        refuse("the drag of line " + std::to_string(dragLine) + " has not ended yet");
    }
    if (act == "move") {
        move();
    } else if (act == "click") {
        click();
    } else if (act == "key") {
        press();
    } else if (act == "drag") {
        drag(lineNumber);
    } else {
        refuse("\"" + act + "\" is none of move, click, wheel, key and drag");
    }
}

void Parser::add(std::int64_t step, int event, int pressed, int wheelSteps)
{
    script.inputs.push_back({step, event, pointer.x, pointer.y, pressed, wheelSteps});
}

void Parser::move()
{
    pointer = place();
    add(stepAfter(now), FL_MOVE, 0);
}

void Parser::click()
{
    pointer = place();
    for (const int event : {FL_PUSH, FL_RELEASE}) {
        add(stepAfter(now), event, FL_Button + FL_RIGHT_MOUSE);
    }
}

void Parser::wheel()
{
    const std::string& direction = word("the direction");
    if (direction != "up" && direction != "down") {
        refuse("the wheel goes up or down, not \"" + direction + "\"");
    }
    const int count = next < words.size() ? number("the count", 1, MOST_WHEEL_STEPS) : 1;
    // X reports the wheel's directions as buttons 4 and 5.
    const bool up = direction == "up";
    for (int i = 0; i < count; ++i) {
        add(stepAfter(now), FL_MOUSEWHEEL, FL_Button + (up ? 4 : 5), up ? -1 : 1);
    }
}

void Parser::press()
{
    const int pressed = key();
    add(stepAfter(now), FL_KEYDOWN, pressed);
    add(stepAfter(now), FL_KEYUP, pressed);
    if ((pressed == 'q' || pressed == 'Q') && !script.endStep) {
        script.endStep = stepAfter(now);
    }
}

void Parser::drag(int lineNumber)
{
    const int held = key();
    const Place from = place();
    const Place to = place();
    const std::string& text = word("how many seconds the drag lasts");
    const auto seconds = parseTime(text);
    if (!seconds) {
        refuse("a drag lasts 0 to 36000 seconds, not \"" + text + "\"");
    }
    dragEnd = now + *seconds;
    dragLine = lineNumber;

    const std::int64_t first = stepAfter(now);
    const std::int64_t last = stepAfter(dragEnd);
    pointer = from;
    add(first, FL_MOVE, 0);
    add(first, FL_PUSH, FL_Button + FL_LEFT_MOUSE);
    add(first, FL_KEYDOWN, held);
    const std::int64_t moves = std::max<std::int64_t>(last - first, 1);
    for (std::int64_t i = 1; i <= moves; ++i) {
        pointer.x = from.x + static_cast<int>((to.x - from.x) * i / moves);
        pointer.y = from.y + static_cast<int>((to.y - from.y) * i / moves);
        add(std::min(first + i, last), FL_DRAG, held);
    }
    add(last, FL_KEYUP, held);
    add(last, FL_RELEASE, FL_Button + FL_LEFT_MOUSE);
}

} // namespace

Script Script::parse(std::istream& text, const std::string& name)
{
    Parser parser;
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        try {
            parser.readLine(line, number);
        } catch (const ScriptError& error) {
            throw ScriptError(name + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    parser.finish();
    return parser.script;
}

Script Script::read(const std::filesystem::path& path)
{
    const auto fail = [&](const std::string& reason) {
        throw ScriptError("cannot read " + path.string() + ": " + reason);
    };
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (exists(status) && !is_regular_file(status) && !is_fifo(status)) {
        // A device may have no end.
        fail("not a file");
    }
    std::ifstream file(path);
    if (!file) {
        fail(std::strerror(errno));
    }
    return parse(file, path.string());
}

} // namespace record
