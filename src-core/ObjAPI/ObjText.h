#pragma once

/// Reading OBJ and MTL text: files by lines, lines by words and numbers. Private to the
/// OBJ library.
///
/// Words and numbers are read as formatted input (sscanf) reads them, but faster; the tests compare
/// both. A text is NUL-terminated, white space is that of the C locale, and a function that takes
/// something from the front of a text moves the pointer behind it.

#include "OpenFile.h"
#include "TextWords.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <locale.h>
#include <string_view>

namespace obj {

/// The lines of a file. A line ends at its newline or after 1023 characters; the rest of a longer
/// line is a further line.
class LineReader {
public:
    static constexpr std::size_t LONGEST = 1023; ///< characters in a line

    explicit LineReader(const char* path);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// False when the file could not be opened; it then has no lines.
    bool is_open() const { return file_ != nullptr; }

    /// \return the next line without its newline, good until the next call; null at the end
    const char* next();

private:
    bool refill();

    Files::Handle file_;
    std::array<char, 65536> buffer_;
    char* begin_ = buffer_.data(); ///< start of the text that next has not returned yet
    char* end_ = begin_;           ///< its end, before buffer_.back(): the terminator needs a byte
    char first_ = '\0';            ///< character overwritten by the terminator of a cut line
    bool cut_ = false;             ///< the last line was cut at LONGEST
};

inline const char* skip_space(const char* text)
{
    while (Files::isSpace(*text)) {
        ++text;
    }
    return text;
}

inline const char* skip_word(const char* text)
{
    while (*text != '\0' && !Files::isSpace(*text)) {
        ++text;
    }
    return text;
}

/// "%s": skips white space and takes the word after it.
/// \return empty, and nothing is taken, when there is only white space left
std::string_view take_word(const char*& text);

/// "%f %f ...": takes at most \p count numbers.
/// \return how many were taken; the other values are unchanged
int take_floats(const char*& text, float* values, int count);

constexpr bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

/// Takes decimal digits and appends them to \p number, which wraps around after 19 of them.
inline void take_digits(const char*& text, std::uint64_t& number)
{
    const char* p = text;
    for (unsigned digit; (digit = static_cast<unsigned char>(*p - '0')) <= 9; ++p) {
        number = 10 * number + digit;
    }
    text = p;
}

/// "%d" without white space before the number. A number out of range becomes the nearest int.
/// \return false, and nothing is taken, when there is no number
inline bool take_int(const char*& text, int& value)
{
    const char* p = text;
    const bool negative = *p == '-';
    p += static_cast<int>(*p == '-' || *p == '+');
    if (!is_digit(*p)) {
        return false;
    }
    while (*p == '0') {
        ++p;
    }
    const char* const first = p;
    std::uint64_t magnitude = 0;
    take_digits(p, magnitude);
    constexpr std::ptrdiff_t ALWAYS_FIT = 9; // digits
    if (p - first > ALWAYS_FIT) {
        constexpr std::ptrdiff_t MOST_DIGITS = 19; // with more, the magnitude has wrapped around
        const std::uint64_t limit = std::uint64_t{INT_MAX} + (negative ? 1 : 0);
        magnitude = p - first > MOST_DIGITS ? limit : std::min(magnitude, limit);
    }
    const auto number = static_cast<std::int64_t>(magnitude);
    value = static_cast<int>(negative ? -number : number);
    text = p;
    return true;
}

/// " -option ": takes the option and the white space around it. No white space is needed after it.
/// \return false, and nothing is taken, when there is something else
bool take_option(const char*& text, std::string_view option);

/// While it lives, numbers are read and written with a decimal point, whatever the
/// program's locale.
class PlainNumbers {
public:
    PlainNumbers() : old_(uselocale(newlocale(LC_ALL_MASK, "C", nullptr))) {}
    ~PlainNumbers() { uselocale(old_); }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    locale_t old_;
};

} // namespace obj
