#pragma once

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <string_view>

/// Prints how an example is used: for -h and --help, and when its arguments make no sense.
/// \param counts  the numbers of arguments that make sense; none of them is an option
/// \param usage   the text
/// \return the status to end with; none when the example can start
inline std::optional<int> answerUsage(int argc, char* argv[], std::initializer_list<int> counts,
                                      const char* usage)
{
    const int count = argc > 0 ? argc - 1 : 0;
    const std::string_view first = count > 0 ? argv[1] : "";
    const bool help = first == "-h" || first == "--help";
    const bool fits = std::find(counts.begin(), counts.end(), count) != counts.end();
    if (fits && !first.starts_with("-")) {
        return std::nullopt;
    }
    std::fputs(usage, help ? stdout : stderr);
    return help ? 0 : 2;
}
