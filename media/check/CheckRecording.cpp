#include "CheckRecording.h"

#include "TextWords.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace media {

namespace {

constexpr std::size_t WORDS = 25;           ///< of a record
constexpr std::size_t WORDS_PER_SENSOR = 6; ///< three for the position, three for the orientation
constexpr std::size_t SENSORS = 3;

/// Places in a file that one remark is about: their number, and the first of them.
struct Finding {
    std::size_t count = 0;
    std::size_t line = 0;  ///< of the first one, from 1
    std::string_view word; ///< the first one

    void note(std::size_t where, std::string_view what)
    {
        if (count++ == 0) {
            line = where;
            word = what;
        }
    }

    std::string text() const
    {
        constexpr std::size_t LONG = 20;
        const std::string shown =
            word.size() > LONG ? std::string(word.substr(0, LONG)) + "..." : std::string(word);
        return "line " + std::to_string(line) + ": \"" + shown + "\"" +
               (count > 1 ? " and " + std::to_string(count - 1) + " more" : "");
    }
};

/// The words of a text, with the number of the line that each is on.
class Words {
public:
    explicit Words(std::string_view from) : text(from) {}

    /// \return the next word; empty at the end
    std::string_view next()
    {
        for (; at < text.size() && Files::isSpace(text[at]); ++at) {
            lines += text[at] == '\n' ? 1 : 0;
        }
        const std::size_t begin = at;
        while (at < text.size() && !Files::isSpace(text[at])) {
            ++at;
        }
        return text.substr(begin, at - begin);
    }

    std::size_t line() const { return lines; }

private:
    std::string_view text;
    std::size_t at = 0;
    std::size_t lines = 1;
};

/// Reads a word as a number. \return none for other words and for numbers that are not finite
std::optional<float> numberOf(std::string_view word)
{
    const std::string text(word);
    char* end = nullptr;
    const float value = std::strtof(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

/// Which coordinate of a figure word \p i of a record is: 0 for x, 1 for y. It belongs to sensor
/// \p i / 6. The other words change nothing that is seen.
bool isPosition(std::size_t i)
{
    return i >= 1 && i < 1 + SENSORS * WORDS_PER_SENSOR && (i - 1) % WORDS_PER_SENSOR < 2;
}

/// Looks for the first line that is not one record, in a file in which most lines are.
std::size_t firstOddLine(std::string_view text)
{
    std::size_t line = 1;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        Words words(text.substr(0, length));
        std::size_t count = 0;
        while (!words.next().empty()) {
            ++count;
        }
        if (count != WORDS && count != 0) {
            return line;
        }
        text.remove_prefix(std::min(length + 1, text.size()));
        ++line;
    }
    return 0;
}

void remarkOnLength(std::string_view text, std::size_t words, FileReport& report)
{
    if (words == 0) {
        report.wrong("holds no numbers: the scene reads a single record of zeros");
    } else if (words % WORDS != 0) {
        const std::size_t odd = firstOddLine(text);
        report.wrong("has " + std::to_string(words) +
                     " words, no multiple of 25: the last record "
                     "is filled up with its last word" +
                     (odd != 0 ? ", and all from line " + std::to_string(odd) +
                                     " on may be read in the wrong place"
                               : ""));
    } else if (text.back() != '\n') {
        report.hint("does not end with a newline; the scene reads it all the same");
    }
}

} // namespace

Recording readRecording(const std::filesystem::path& path, bool shown, FileReport& report)
{
    Recording recording;
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        report.wrong("is a folder: the scene reads a single record of zeros");
        recording.positions.emplace_back();
        return recording;
    }
    if (!checkReadable(path, Mark::stops, "the scene ends as it starts, with status 0", report)) {
        return recording;
    }
    const std::string text = contentOf(path);
    Words words(text);
    Finding badPositions;
    Finding badOthers;
    std::size_t count = 0;
    for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
        const std::size_t i = count++ % WORDS;
        if (i == 0) {
            recording.positions.emplace_back();
        }
        const std::optional<float> value = numberOf(word);
        if (!value) {
            (shown && isPosition(i) ? badPositions : badOthers).note(words.line(), word);
        }
        if (i == 0) {
            recording.end = value.value_or(0);
        }
        if (isPosition(i)) {
            Point& p = recording.positions.back()[(i - 1) / WORDS_PER_SENSOR];
            ((i - 1) % WORDS_PER_SENSOR == 0 ? p.x : p.y) = value.value_or(0);
        }
    }
    if (recording.positions.empty()) {
        recording.positions.emplace_back();
    }
    report.summary = std::to_string(recording.positions.size()) + " records";
    remarkOnLength(text, count, report);
    if (badPositions.count > 0) {
        report.wrong("has positions that are no finite numbers, " + badPositions.text() +
                     ": the figure jumps there");
    }
    if (badOthers.count > 0) {
        report.hint("has words that are no finite numbers, " + badOthers.text() +
                    "; the scene does not use them");
    }
    return recording;
}

} // namespace media
