#include "Printable.h"

#include <cstddef>

namespace Files {

namespace {

bool isContinuation(unsigned char byte)
{
    return byte >= 0x80 && byte <= 0xbf;
}

/// \return the bytes of the character that the text starts with; 0 when it is a control character
///         or no UTF-8
std::size_t characterBytes(std::string_view text)
{
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i])
                               : static_cast<unsigned char>(0);
    };
    const unsigned char first = byte(0);
    const unsigned char second = byte(1);
    if (first < 0x80) {
        return first >= ' ' && first != 0x7f ? 1 : 0;
    }
    if (!isContinuation(second)) {
        return 0;
    }
    if (first >= 0xc2 && first <= 0xdf) {
        const bool isControl = first == 0xc2 && second < 0xa0;
        return isControl ? 0 : 2;
    }
    if (first >= 0xe0 && first <= 0xef) {
        const bool isOverlong = first == 0xe0 && second < 0xa0;
        const bool isSurrogate = first == 0xed && second >= 0xa0;
        return isOverlong || isSurrogate || !isContinuation(byte(2)) ? 0 : 3;
    }
    if (first >= 0xf0 && first <= 0xf4) {
        const bool isOverlong = first == 0xf0 && second < 0x90;
        const bool isTooLarge = first == 0xf4 && second >= 0x90;
        return isOverlong || isTooLarge || !isContinuation(byte(2)) || !isContinuation(byte(3)) ? 0
                                                                                                : 4;
    }
    return 0;
}

std::string escaped(char c)
{
    constexpr const char* DIGITS = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return std::string("\\x") + DIGITS[byte / 16] + DIGITS[byte % 16];
}

/// \param newlines  true: '\n' is kept
std::string printable(std::string_view text, bool newlines)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t bytes = newlines && text[0] == '\n' ? 1 : characterBytes(text);
        result += bytes == 0 ? escaped(text[0]) : std::string(text.substr(0, bytes));
        text.remove_prefix(bytes == 0 ? 1 : bytes);
    }
    return result;
}

} // namespace

std::string printable(std::string_view text)
{
    return printable(text, false);
}

std::string printableLines(std::string_view text)
{
    return printable(text, true);
}

} // namespace Files
