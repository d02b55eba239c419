#include "Script.h"

#include "CommandLine.h"
#include "Glide.h"
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
constexpr double SMALLEST_ZOOM = 0.01;
constexpr double LARGEST_ZOOM = 100;
constexpr double FARTHEST_PLACE = 100; // the water reaches from 0 to 1

struct Place {
    int x = 0;
    int y = 0;
};

/// What lasts for some time, and keeps others from what it does.
struct Lasting {
    const char* name;
    Microseconds end = 0;
    int line = 0; ///< 0 = none yet
};

/// Reads a script line by line. Its errors have neither file nor line number yet.
class Parser {
public:
    Script script;

    void readLine(const std::string& line, int number);

    /// Sorts the acts: drags and glides have some after those of the lines that follow them.
    void finish();

private:
    std::vector<std::string> words; ///< of the line
    std::size_t next = 0;           ///< the word to be read
    Place pointer;
    Microseconds now = 0;
    int current = 0; ///< number of the line
    Lasting dragging{"drag"};
    Lasting zooming{"zoom"};
    Lasting panning{"pan"};
    int held = 0; ///< the key of the latest drag

    [[noreturn]] static void refuse(const std::string& what) { throw ScriptError(what); }
    const std::string& word(const char* what);
    template<typename Number>
    Number number(const char* what, Number low, Number high);
    Place place();
    int key();
    void readTime();
    void readAct();
    void waitFor(const Lasting& other) const;
    void begin(Lasting& act);

    void move();
    void click();
    void wheel();
    void press();
    void drag();
    void glide();
    void glideZoom();
    void glidePan();
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
    current = number;
    if (words.empty()) {
        return;
    }
    readTime();
    readAct();
    if (next < words.size()) {
        refuse("\"" + words[next] + "\" is one word too many");
    }
}

void Parser::finish()
{
    std::stable_sort(script.acts.begin(), script.acts.end(),
                     [](const Act& a, const Act& b) { return stepOf(a) < stepOf(b); });
}

const std::string& Parser::word(const char* what)
{
    if (next == words.size()) {
        refuse(std::string(what) + " is missing");
    }
    return words[next++];
}

template<typename Number>
Number Parser::number(const char* what, Number low, Number high)
{
    const std::string& text = word(what);
    Number value{};
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

void Parser::waitFor(const Lasting& other) const
{
    if (now < other.end) {
        refuse(std::string("the ") + other.name + " of line " + std::to_string(other.line) +
               " has not ended yet");
    }
}

void Parser::begin(Lasting& act)
{
    const std::string& text =
        word((std::string("how many seconds the ") + act.name + " lasts").c_str());
    const auto seconds = parseTime(text);
    if (!seconds) {
        refuse(std::string("a ") + act.name + " lasts 0 to 36000 seconds, not \"" + text + "\"");
    }
    act.end = now + *seconds;
    act.line = current;
}

void Parser::readAct()
{
    const std::string& act = word("what happens (move, click, wheel, key, drag or glide)");
    if (act == "wheel") {
        wheel();
        return;
    }
    if (act == "glide") {
        glide();
        return;
    }
    waitFor(dragging);
    if (act == "move") {
        move();
    } else if (act == "click") {
        click();
    } else if (act == "key") {
        press();
    } else if (act == "drag") {
        drag();
    } else {
        refuse("\"" + act + "\" is none of move, click, wheel, key, drag and glide");
    }
}

void Parser::add(std::int64_t step, int event, int pressed, int wheelSteps)
{
    script.acts.emplace_back(Input{step, event, pointer.x, pointer.y, pressed, wheelSteps});
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
    waitFor(zooming);
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

void Parser::drag()
{
    held = key();
    const Place from = place();
    const Place to = place();
    if (held == 'v') {
        waitFor(panning);
    }
    begin(dragging);

    const std::int64_t first = stepAfter(now);
    const std::int64_t last = stepAfter(dragging.end);
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

void Parser::glide()
{
    const std::string& what = word("what glides (zoom or pan)");
    if (what == "zoom") {
        glideZoom();
    } else if (what == "pan") {
        glidePan();
    } else {
        refuse("a glide is a zoom or a pan, not \"" + what + "\"");
    }
}

void Parser::glideZoom()
{
    waitFor(zooming);
    const double from = number("the first factor", SMALLEST_ZOOM, LARGEST_ZOOM);
    const double to = number("the last factor", SMALLEST_ZOOM, LARGEST_ZOOM);
    begin(zooming);
    const Glide factor{stepAfter(now), stepAfter(zooming.end), from, to};
    for (std::int64_t step = factor.first; step <= factor.last; ++step) {
        script.acts.emplace_back(Zoom{step, static_cast<float>(factor.productAt(step))});
    }
}

void Parser::glidePan()
{
    waitFor(panning);
    if (held == 'v') {
        waitFor(dragging);
    }
    double places[4];
    for (int i = 0; i < 4; ++i) {
        places[i] = number(i % 2 == 0 ? "x" : "y", -FARTHEST_PLACE, FARTHEST_PLACE);
    }
    begin(panning);
    const Glide x{stepAfter(now), stepAfter(panning.end), places[0], places[2]};
    const Glide y{x.first, x.last, places[1], places[3]};
    for (std::int64_t step = x.first; step <= x.last; ++step) {
        script.acts.emplace_back(
            Pan{step, static_cast<float>(x.sumAt(step)), static_cast<float>(y.sumAt(step))});
    }
}

} // namespace

std::int64_t stepOf(const Act& act)
{
    return std::visit([](const auto& each) { return each.step; }, act);
}

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
