#include "ObjText.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

namespace {

using obj::skip_space;
using obj::take_digits;
using obj::take_int;

/// "%f", by the C library.
bool take_odd_float(const char*& text, float& value)
{
    const obj::PlainNumbers plain;
    int length = 0;
    if (std::sscanf(text, "%f%n", &value, &length) != 1) {
        return false;
    }
    text += length;
    return true;
}

/// The powers of ten that are exact in double.
constexpr double POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// value = mantissa * 10^exponent, rounded once, for numbers of not too many digits.
/// \param digits  the number of digits in the mantissa
/// \return false, and nothing is written, for other numbers
bool round_to_float(std::uint64_t mantissa, std::ptrdiff_t digits, std::ptrdiff_t exponent,
                    float& value)
{
    // Integers up to 2^53 and powers of ten up to the 22nd are exact in double: their product or
    // quotient is rounded once (Clinger, "How to Read Floating Point Numbers Accurately", 1990).
    // Rounding that to single precision is a second rounding. It can only differ from rounding once
    // if the double is a tie between two floats.
    constexpr std::ptrdiff_t MOST_DIGITS = 19; // a number of more digits may not fit into 64 bits
    if (digits > MOST_DIGITS || mantissa > std::uint64_t{1} << 53 || exponent < -22 ||
        exponent > 22) {
        return false;
    }
    const double d = exponent < 0 ? static_cast<double>(mantissa) / POWERS[-exponent]
                                  : static_cast<double>(mantissa) * POWERS[exponent];
    constexpr std::uint64_t HALF_A_FLOAT = 1u << 28;
    if ((std::bit_cast<std::uint64_t>(d) & (2 * HALF_A_FLOAT - 1)) == HALF_A_FLOAT) {
        return false;
    }
    value = static_cast<float>(d);
    return true;
}

/// "%f". Decimal numbers are read here, to the same bits. The C library reads the rest: hexadecimal
/// numbers, infinities, results out of range, and text that only begins like a number.
bool take_float(const char*& text, float& value)
{
    const char* p = skip_space(text);
    if (*p == '\0') {
        return false;
    }
    const bool negative = *p == '-';
    p += static_cast<int>(*p == '-' || *p == '+');

    std::uint64_t mantissa = 0;
    const char* const first = p;
    take_digits(p, mantissa);
    std::ptrdiff_t digits = p - first;
    std::ptrdiff_t exponent = 0;
    if (*p == '.') {
        const char* const fraction = ++p;
        take_digits(p, mantissa);
        digits += p - fraction;
        exponent = fraction - p;
    }
    if (*p == 'e' || *p == 'E') {
        const char* q = p + 1;
        int power = 0;
        if (!take_int(q, power)) {
            return take_odd_float(text, value);
        }
        exponent += power;
        p = q;
    }
    if (digits < 1 || *p == 'x' || *p == 'X') {
        return take_odd_float(text, value);
    }
    float magnitude = 0;
    if (!round_to_float(mantissa, digits, exponent, magnitude) &&
        std::from_chars(first, p, magnitude).ec != std::errc()) {
        return take_odd_float(text, value);
    }
    value = negative ? -magnitude : magnitude;
    text = p;
    return true;
}

} // namespace

namespace obj {

LineReader::LineReader(const char* path) : file_(Files::openRegular(path))
{
    if (is_open()) {
        std::setvbuf(file_.get(), nullptr, _IONBF, 0); // LineReader has a buffer of its own
    }
}

bool LineReader::refill()
{
    const auto left = static_cast<std::size_t>(end_ - begin_);
    std::memmove(buffer_.data(), begin_, left);
    begin_ = buffer_.data();
    end_ = begin_ + left;
    const std::size_t got = std::fread(end_, 1, buffer_.size() - 1 - left, file_.get());
    end_ += got;
    return got > 0;
}

const char* LineReader::next()
{
    if (!is_open()) {
        return nullptr;
    }
    if (cut_) {
        *begin_ = first_;
        cut_ = false;
    }
    for (bool more = true; more; more = refill()) {
        const auto left = static_cast<std::size_t>(end_ - begin_);
        const std::size_t length = left < LONGEST ? left : LONGEST;
        char* const line = begin_;
        if (void* newline = std::memchr(line, '\n', length)) {
            begin_ = static_cast<char*>(newline);
            *begin_++ = '\0';
            return line;
        }
        if (length == LONGEST) {
            begin_ += LONGEST;
            first_ = *begin_;
            *begin_ = '\0';
            cut_ = true;
            return line;
        }
    }
    if (begin_ == end_) {
        return nullptr;
    }
    *end_ = '\0';
    return std::exchange(begin_, end_);
}

std::string_view take_word(const char*& text)
{
    const char* const word = skip_space(text);
    const char* const end = skip_word(word);
    if (end != word) {
        text = end;
    }
    return {word, static_cast<std::size_t>(end - word)};
}

int take_floats(const char*& text, float* values, int count)
{
    int taken = 0;
    while (taken < count && take_float(text, values[taken])) {
        ++taken;
    }
    return taken;
}

bool take_option(const char*& text, std::string_view option)
{
    const char* p = skip_space(text);
    for (const char c : option) {
        if (*p++ != c) {
            return false;
        }
    }
    text = skip_space(p);
    return true;
}

} // namespace obj
