#include "ShowLog.h"

#include "CommandLine.h"
#include "Printable.h"

#include <cerrno>
#include <charconv>
#include <cinttypes>
#include <cstring>
#include <limits>
#include <sstream>

namespace wall {

namespace {

constexpr const char* MAGIC = "kelpix-wall log 1";
constexpr std::size_t LONGEST_LINE = 1 << 20; // 1,024 ranks with 8 events of 61 characters
constexpr int LONGEST_FILE = 1 << 20;         // of the wall's two

/// Pixels from a wall's corner: a pointer can be on a desktop beside the largest one. The scene
/// takes differences of two places.
constexpr int FARTHEST_POINTER = 1 << 22;

/// Water units.
constexpr float FARTHEST_FIGURE = 1000;

template<typename Number>
bool read(const std::string& text, Number& value)
{
    using Limits = std::numeric_limits<Number>;
    return commandline::readNumber(text, Limits::lowest(), Limits::max(), value);
}

bool readHexadecimal(const std::string& text, std::uint64_t& value)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
    return text.size() == 16 && error == std::errc() && stop == end;
}

/// Reads the words of a line one by one.
class Words {
public:
    explicit Words(const std::string& line) : text(line) {}

    bool take(std::string& word) { return static_cast<bool>(text >> word); }

    template<typename Number>
    bool take(Number& value)
    {
        std::string word;
        return take(word) && read(word, value);
    }

    bool takePlace(int& value)
    {
        std::string word;
        return take(word) &&
               commandline::readNumber(word, -FARTHEST_POINTER, FARTHEST_POINTER, value);
    }

    bool takeCoordinate(float& value)
    {
        std::string word;
        return take(word) &&
               commandline::readNumber(word, -FARTHEST_FIGURE, FARTHEST_FIGURE, value);
    }

private:
    std::istringstream text;
};

/// What follows the word figure.
bool readFigure(Words& words, Poses& poses)
{
    std::size_t number = 0;
    float x = 0;
    float y = 0;
    if (!words.take(number) || number < 1 || number > FIGURES || !words.takeCoordinate(x) ||
        !words.takeCoordinate(y)) {
        return false;
    }
    poses[number - 1] = Place{static_cast<double>(x), static_cast<double>(y)};
    return true;
}

bool readFrame(const std::string& line, ShowFrame& frame)
{
    Words words(line);
    std::string word;
    if (!words.take(frame.frame) || !words.take(frame.step) || !words.take(word) ||
        !readHexadecimal(word, frame.state)) {
        return false;
    }
    while (words.take(word)) {
        InputEvent event{};
        if (word == "anew") {
            if (!words.take(frame.anew.emplace())) {
                return false;
            }
        } else if (word == "event" && words.take(event.kind) && words.takePlace(event.x) &&
                   words.takePlace(event.y) && words.take(event.key) && words.take(event.wheel)) {
            frame.inputs.push_back(event);
        } else if (word == "steered") {
            frame.poses.emplace();
        } else if (word == "figure" && frame.poses && readFigure(words, *frame.poses)) {
            continue;
        } else {
            return false;
        }
    }
    return true;
}

/// A coordinate of single precision, in the digits that bring it back.
std::string textOf(double coordinate)
{
    char digits[32];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, static_cast<float>(coordinate));
    return " " + std::string(digits, error == std::errc() ? end : digits);
}

} // namespace

ShowWriter::ShowWriter(const std::filesystem::path& path, const ShowHead& head) : file(path)
{
    const WallFiles& files = head.files;
    char numbers[160];
    std::snprintf(numbers, sizeof numbers,
                  "\nmedia %016" PRIx64 "\nsimulated %.17g\nfit %s\nseed %u\n", head.media,
                  head.simulated, head.fit == Fit::cover ? "cover" : "contain", head.seed);
    std::string text = std::string(MAGIC) + "\nversion " + head.version + numbers;
    text += "description " + std::to_string(files.description.size()) + " " +
            Files::printable(files.name) + "\n" + files.description + "\n";
    text +=
        "more " + std::to_string(files.hasMore ? static_cast<int>(files.more.size()) : -1) + "\n";
    if (files.hasMore) {
        text += files.more + "\n";
    }
    if (!file.add(text + "frames\n")) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
}

bool ShowWriter::add(const ShowFrame& frame)
{
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%" PRIu32 " %d %016" PRIx64, frame.frame, frame.step,
                  frame.state);
    std::string line = numbers;
    if (frame.anew) {
        line += " anew " + std::to_string(*frame.anew);
    }
    if (frame.poses) {
        line += " steered";
        for (std::size_t k = 0; k < FIGURES; ++k) {
            if (const auto& place = (*frame.poses)[k]) {
                line += " figure " + std::to_string(k + 1) + textOf(place->x) + textOf(place->y);
            }
        }
    }
    for (const InputEvent& event : frame.inputs) {
        line += " event";
        for (const int number : {event.kind, event.x, event.y, event.key, event.wheel}) {
            line += " " + std::to_string(number);
        }
    }
    return file.add(line + "\n");
}

ShowReader::ShowReader(const std::filesystem::path& path)
    : file(Files::openRegular(path.c_str())), name(path.string())
{
    if (file == nullptr) {
        throw ShowError("cannot read " + name);
    }
    readHead();
}

void ShowReader::refuse(const std::string& what) const
{
    throw ShowError(name + ": " + what);
}

/// The next line without its end; none at the end of the file, or when the end of the line is
/// missing.
std::optional<std::string> ShowReader::line()
{
    std::string text;
    for (int c = 0; (c = std::fgetc(file.get())) != EOF;) {
        if (c == '\n') {
            return text;
        }
        if (text.size() == LONGEST_LINE) {
            refuse("a line is too long");
        }
        text.push_back(static_cast<char>(c));
    }
    return std::nullopt;
}

/// What follows the keyword on the next line.
std::string ShowReader::field(const char* keyword)
{
    const std::optional<std::string> text = line();
    const std::string start = std::string(keyword) + " ";
    if (!text || !text->starts_with(start)) {
        refuse("\"" + std::string(keyword) + "\" is missing");
    }
    return text->substr(start.size());
}

std::string ShowReader::bytes(std::size_t count)
{
    std::string text(count, '\0');
    if (std::fread(text.data(), 1, count, file.get()) != count || std::fgetc(file.get()) != '\n') {
        refuse("it breaks off");
    }
    return text;
}

void ShowReader::readHead()
{
    if (line() != MAGIC) {
        refuse("is no log of kelpix-wall");
    }
    first.version = field("version");
    const auto check = [this](bool good, const char* what) {
        if (!good) {
            refuse(std::string(what) + " is damaged");
        }
    };
    check(readHexadecimal(field("media"), first.media), "media");
    check(commandline::readNumber(field("simulated"), 0.0, 1.0, first.simulated), "simulated");
    const std::string fit = field("fit");
    check(fit == "contain" || fit == "cover", "fit");
    first.fit = fit == "cover" ? Fit::cover : Fit::contain;
    check(read(field("seed"), first.seed), "seed");

    const std::string description = field("description");
    const std::size_t space = description.find(' ');
    int count = 0;
    check(space != std::string::npos &&
              commandline::readNumber(description.substr(0, space), 0, LONGEST_FILE, count),
          "description");
    first.files.name = description.substr(space + 1);
    first.files.description = bytes(static_cast<std::size_t>(count));
    check(commandline::readNumber(field("more"), -1, LONGEST_FILE, count), "more");
    first.files.hasMore = count >= 0;
    if (first.files.hasMore) {
        first.files.more = bytes(static_cast<std::size_t>(count));
    }
    check(line() == "frames", "frames");

    if (const auto problem = layOut(first.files, wall)) {
        throw ShowError(name + ": " + problem->text());
    }
    wall.fit = first.fit;
    if (first.simulated > 0) {
        wall = wall.simulated(first.simulated);
    }
}

std::optional<ShowFrame> ShowReader::next()
{
    const std::optional<std::string> text = line();
    if (!text) {
        return std::nullopt;
    }
    ShowFrame frame;
    if (!readFrame(*text, frame) || frame.frame != frames + 1) {
        refuse("the frame after " + std::to_string(frames) + " is damaged");
    }
    ++frames;
    return frame;
}

} // namespace wall
