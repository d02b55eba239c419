#include "PoseTable.h"

#include "CommandLine.h"
#include "OpenFile.h"
#include "TextWords.h"

#include <sstream>
#include <stdexcept>
#include <string>

namespace media {

namespace {

constexpr std::size_t LONGEST_LINE = 200;
constexpr int MOST_LINES = 100000;

/// The picture is 0 .. 1; a figure may leave it.
constexpr float LEAST_PLACE = -1;
constexpr float MOST_PLACE = 2;

/// What is wrong with a line.
class LineError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads a line without its end. \return whether there was one
bool readLine(std::FILE* file, std::string& line)
{
    line.clear();
    int c = std::fgetc(file);
    if (c == EOF) {
        return false;
    }
    for (; c != EOF && c != '\n'; c = std::fgetc(file)) {
        if (line.size() == LONGEST_LINE) {
            throw LineError("the line is longer than " + std::to_string(LONGEST_LINE) +
                            " characters");
        }
        line += static_cast<char>(c);
    }
    return true;
}

std::vector<std::string> wordsOf(const std::string& line)
{
    std::vector<std::string> words;
    bool inWord = false;
    for (const char c : line) {
        if (c == '#') {
            break;
        }
        const bool isSpace = Files::isSpace(c);
        if (!isSpace && !inWord) {
            words.emplace_back();
        }
        if (!isSpace) {
            words.back() += c;
        }
        inWord = !isSpace;
    }
    return words;
}

template<typename Number>
Number numberOf(const std::string& word, Number low, Number high, const std::string& wanted)
{
    Number number{};
    if (!commandline::readNumber(word, low, high, number)) {
        throw LineError(wanted + ", not \"" + word + "\"");
    }
    return number;
}

float placeOf(const std::string& word, const std::string& name)
{
    return numberOf(word, LEAST_PLACE, MOST_PLACE,
                    name + " is a number from -1 to 2, and the picture is 0 to 1");
}

void readStation(const std::vector<std::string>& words, Stations& stations)
{
    constexpr const char* HOME = "home";
    const bool goesHome = words.size() == 3 && words[2] == HOME;
    if (words.size() != 4 && !goesHome) {
        throw LineError("a line is TIME FIGURE X Y or TIME FIGURE home, such as \"8 0 0.70 0.50\"");
    }
    const double seconds = numberOf(words[0], 0.0, LONGEST_DANCE,
                                    "the time is a number of seconds from 0 to 3600, such as 12.5");
    const int figure = numberOf(words[1], 0, FIGURES - 1, "the figure is 0, 1 or 2");
    std::vector<Station>& path = stations[static_cast<std::size_t>(figure)];
    if (!path.empty() && seconds <= path.back().seconds) {
        std::ostringstream text;
        text << "the time " << words[0] << " is not after " << path.back().seconds
             << ", that of the line before of figure " << figure;
        throw LineError(text.str());
    }
    path.push_back({seconds, goesHome ? homeOf(figure)
                                      : Point{placeOf(words[2], "x"), placeOf(words[3], "y")}});
}

} // namespace

Stations readPoseTable(const std::filesystem::path& path)
{
    const Files::Handle file = Files::openRegular(path.c_str());
    if (!file) {
        throw std::runtime_error("cannot read " + path.string() + ": not a file, or closed to you");
    }
    Stations stations;
    std::string line;
    int number = 1;
    try {
        for (; readLine(file.get(), line); ++number) {
            if (number > MOST_LINES) {
                throw LineError("there are more than " + std::to_string(MOST_LINES) + " lines");
            }
            const std::vector<std::string> words = wordsOf(line);
            if (!words.empty()) {
                readStation(words, stations);
            }
        }
    } catch (const LineError& error) {
        throw std::runtime_error(path.string() + ":" + std::to_string(number) + ": " +
                                 error.what());
    }
    if (std::ferror(file.get()) != 0) {
        throw std::runtime_error("cannot read " + path.string() + " to its end");
    }
    if (endOf(stations) == 0) {
        throw std::runtime_error(
            path.string() + ": no line leads a figure anywhere; \"8 0 0.70 0.50\" has figure 0 "
                            "there after 8 s");
    }
    return stations;
}

} // namespace media
