#pragma once

#include <string>
#include <string_view>

namespace Files {

/// Makes text from outside, the name of a file or text from a file, safe to print: a terminal takes
/// control characters for commands.
/// \return the text with every control character (those above 127 and DEL too) and every byte that
///         is no UTF-8 written as \xHH, two hexadecimal digits for each byte
std::string printable(std::string_view text);

/// As printable, for a text of several lines: '\n' stays.
std::string printableLines(std::string_view text);

} // namespace Files
