#include "ShowLog.h"

#include "CommandLine.h"
#include "Printable.h"

#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <limits>
#include <sstream>

namespace wall {

namespace {

constexpr const char* MAGIC = "kelpix-wall log 1";
constexpr std::size_t LONGEST_LINE = 1 << 16;
constexpr int LONGEST_FILE = 1 << 20; // of the wall's two

/// Pixels from a wall's corner: a pointer can be on a desktop beside the largest one. The scene
/// takes differences of two places.
constexpr int FARTHEST_POINTER = 1 << 22;

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

private:
    std::istringstream text;
};

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
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

ShowWriter::ShowWriter(const std::filesystem::path& path, const ShowHead& head)
    : file(Files::create(path.c_str()))
{
    if (file == nullptr) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
    std::fprintf(file.get(),
                 "%s\nversion %s\nmedia %016" PRIx64 "\nsimulated %.17g\nfit %s\nseed %u\n", MAGIC,
                 head.version.c_str(), head.media, head.simulated,
                 head.fit == Fit::cover ? "cover" : "contain", head.seed);
    const WallFiles& files = head.files;
    std::setvbuf(file.get(), nullptr, _IOLBF,
                 BUFSIZ); // whoever is killed has written what it played
    const auto put = [this](const std::string& bytes) {
        std::fwrite(bytes.data(), 1, bytes.size(), file.get());
        std::fputc('\n', file.get());
    };
    std::fprintf(file.get(), "description %zu %s\n", files.description.size(),
                 Files::printable(files.name).c_str());
    put(files.description);
    std::fprintf(file.get(), "more %d\n", files.hasMore ? static_cast<int>(files.more.size()) : -1);
    if (files.hasMore) {
        put(files.more);
    }
    put("frames");
}

void ShowWriter::add(const ShowFrame& frame)
{
    std::fprintf(file.get(), "%" PRIu32 " %d %016" PRIx64, frame.frame, frame.step, frame.state);
    if (frame.anew) {
        std::fprintf(file.get(), " anew %u", *frame.anew);
    }
    for (const InputEvent& event : frame.inputs) {
        std::fprintf(file.get(), " event %d %d %d %d %d", event.kind, event.x, event.y, event.key,
                     event.wheel);
    }
    std::fputc('\n', file.get());
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
