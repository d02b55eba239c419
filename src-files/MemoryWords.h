#pragma once

#include "OpenFile.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <span>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace Files {

/// The words of a text in memory, read with TextWords' reader, and the lines in which they stand.
class MemoryWords {
public:
    /// \param text  borrows; may hold any bytes
    /// \throws std::bad_alloc
    explicit MemoryWords(std::string_view text);

    /// \return the text as a file, which this object closes
    std::FILE* file() const { return file_.get(); }

    /// Reads one word as readWord does.
    bool next(std::span<char> word);

    /// \return how many bytes have been read
    std::size_t position() const;

    /// Positions that grow from call to call take one pass over the text together.
    /// \return the line, counted from 1, of the word that ended at \p position; at the end of the
    ///         text its last line
    long lineAt(std::size_t position);

    /// \return the line of the word that was read last
    long line() { return lineAt(position()); }

private:
    std::string_view text_;
    Handle file_;
    std::size_t counted_ = 0; ///< characters whose ends of lines are counted
    long ends_ = 0;           ///< of lines among them
};

/// Takes a whole word for a number: decimal digits, with a sign, and for a floating-point type
/// with a point and an exponent.
/// \return false for a word with anything before or after the number, and for a number that does
///         not fit or is not finite; \p value is unchanged then
template<typename Number>
bool numberOf(std::string_view word, Number& value)
{
    const bool plus = word.size() > 1 && word[0] == '+' && word[1] != '-';
    const char* const end = word.data() + word.size();
    Number number{};
    const auto [stop, error] = std::from_chars(word.data() + (plus ? 1 : 0), end, number);
    if (error != std::errc() || stop != end) {
        return false;
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number)) {
            return false;
        }
    }
    value = number;
    return true;
}

} // namespace Files
