#include "WallSettings.h"

#include "CommandLine.h"
#include "MemoryWords.h"
#include "Printable.h"

#include <cstring>
#include <set>
#include <span>

namespace {

/// Room for the longest path.
constexpr std::size_t WORD_SIZE = 4097;

constexpr int LARGEST_TILE = 16384;
constexpr int LARGEST_WALL = 1 << 20;

/// What is wrong with a word.
struct Refusal {
    std::string what;
};

std::string inQuotes(const std::string& word)
{
    // The end of a very long word says nothing.
    return "\"" + Files::printable(word.substr(0, 60)) + "\"";
}

/// \return whether a text is an X display: HOST:NUMBER.SCREEN, without HOST or .SCREEN too
bool isDisplay(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || text.size() > 64) {
        return false;
    }
    const std::string_view host = std::string_view(text).substr(0, colon);
    const std::string_view number = std::string_view(text).substr(colon + 1);
    constexpr const char* DIGITS = "0123456789";
    constexpr const char* LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                    "0123456789.-_/";
    const std::size_t point = number.find('.');
    const std::string_view server = number.substr(0, point);
    const std::string_view screen =
        point == std::string_view::npos ? "0" : number.substr(point + 1);
    const auto isNumber = [](std::string_view digits) {
        return !digits.empty() && digits.find_first_not_of(DIGITS) == std::string_view::npos;
    };
    return isNumber(server) && isNumber(screen) &&
           host.find_first_not_of(LETTERS) == std::string_view::npos && !host.starts_with('-');
}

/// Reads the words of one file.
class Reader {
public:
    Reader(std::string_view bytes, WallSettings& settings) : words_(bytes), settings_(settings) {}

    /// Throws Refusal.
    void read();

    long line() { return words_.line(); }

private:
    Files::MemoryWords words_;
    WallSettings& settings_;
    WindowSettings* window_ = nullptr;         ///< that is being read; null = still the wall
    std::set<std::string, std::less<>> given_; ///< keywords of that window or of the wall
    std::array<char, WORD_SIZE> word_{};

    bool next();
    std::string wordAfter(const std::string& keyword, const char* wanted);
    template<typename Number>
    Number numberAfter(const std::string& keyword, Number low, Number high);
    void readOfWall(const std::string& keyword);
    void readOfWindow(const std::string& keyword);
    void startWindow();
    void readPlace();
    void readBlend();
};

bool Reader::next()
{
    if (!words_.next(word_)) {
        return false;
    }
    if (std::strlen(word_.data()) == WORD_SIZE - 1) {
        throw Refusal{"a word is longer than " + std::to_string(WORD_SIZE - 2) + " characters"};
    }
    return true;
}

std::string Reader::wordAfter(const std::string& keyword, const char* wanted)
{
    if (!next()) {
        throw Refusal{"the file ends where " + keyword + " needs " + wanted};
    }
    return word_.data();
}

template<typename Number>
Number Reader::numberAfter(const std::string& keyword, Number low, Number high)
{
    const std::string range = commandline::rangeOf(low, high);
    const std::string word = wordAfter(keyword, range.c_str());
    Number number{};
    if (!Files::numberOf(word, number) || number < low || number > high) {
        throw Refusal{keyword + " needs " + range + ", not " + inQuotes(word)};
    }
    return number;
}

void Reader::read()
{
    if (!next()) {
        throw Refusal{"the file ends where \"Wall\" is expected"};
    }
    if (std::strcmp(word_.data(), "Wall") != 0) {
        throw Refusal{inQuotes(word_.data()) + " stands where \"Wall\" is expected"};
    }
    while (next()) {
        const std::string keyword = word_.data();
        if (keyword == "Map") {
            startWindow();
            continue;
        }
        if (!given_.insert(keyword).second) {
            throw Refusal{inQuotes(keyword) + " stands twice" +
                          (window_ != nullptr ? " after one Map" : "")};
        }
        if (window_ != nullptr) {
            readOfWindow(keyword);
        } else {
            readOfWall(keyword);
        }
    }
}

void Reader::readOfWall(const std::string& keyword)
{
    if (keyword == "Rate") {
        settings_.rate = numberAfter(keyword, 10.0, 120.0);
    } else if (keyword == "Seed") {
        settings_.seed = numberAfter(keyword, 0U, ~0U);
    } else if (keyword == "Fit") {
        const std::string fit = wordAfter(keyword, "contain or cover");
        if (fit != "contain" && fit != "cover") {
            throw Refusal{"Fit needs contain or cover, not " + inQuotes(fit)};
        }
        settings_.fit = fit == "cover" ? Fit::cover : Fit::contain;
    } else if (keyword == "Media") {
        settings_.media = wordAfter(keyword, "a folder");
    } else {
        throw Refusal{inQuotes(keyword) + " is none of Rate, Seed, Fit, Media and Map"};
    }
}

void Reader::startWindow()
{
    const int column = numberAfter("Map", 0, LARGEST_WALL);
    const int row = numberAfter("Map", 0, LARGEST_WALL);
    const auto [window, isNew] = settings_.windows.try_emplace({column, row});
    if (!isNew) {
        throw Refusal{"Map " + std::to_string(column) + " " + std::to_string(row) +
                      " stands twice"};
    }
    window_ = &window->second;
    window_->line = line();
    given_.clear();
}

void Reader::readOfWindow(const std::string& keyword)
{
    if (keyword == "Display") {
        window_->display = wordAfter(keyword, "a display, such as :0.1");
        if (!isDisplay(window_->display)) {
            throw Refusal{"Display needs a display, such as :0.1, not " +
                          inQuotes(window_->display)};
        }
    } else if (keyword == "Place") {
        readPlace();
    } else if (keyword == "Blend") {
        readBlend();
    } else if (keyword == "Gain") {
        for (float& channel : window_->gain) {
            channel = numberAfter(keyword, 0.0F, 1.0F);
        }
    } else {
        throw Refusal{inQuotes(keyword) + " is none of Display, Place, Blend, Gain and Map"};
    }
}

void Reader::readPlace()
{
    PixelRect place;
    place.x = numberAfter("Place", 0, LARGEST_WALL);
    place.y = numberAfter("Place", 0, LARGEST_WALL);
    place.w = numberAfter("Place", 1, LARGEST_WALL);
    place.h = numberAfter("Place", 1, LARGEST_WALL);
    window_->place = place;
}

void Reader::readBlend()
{
    Blend blend;
    for (int* width : {&blend.left, &blend.right, &blend.bottom, &blend.top}) {
        *width = numberAfter("Blend", 0, LARGEST_TILE);
    }
    blend.gamma = numberAfter("Blend", 1.0F, 3.0F);
    window_->blend = blend;
}

} // namespace

std::optional<TileProblem> parseWallSettings(std::string_view bytes, const std::string& name,
                                             WallSettings& settings)
{
    settings = WallSettings();
    if (const std::size_t at = bytes.find('\0'); at != std::string_view::npos) {
        return TileProblem{name, Files::MemoryWords(bytes).lineAt(at + 1),
                           "there is a NUL character: no text"};
    }
    Reader reader(bytes, settings);
    try {
        reader.read();
    } catch (const Refusal& refusal) {
        return TileProblem{name, reader.line(), refusal.what};
    }
    return {};
}
