#pragma once

#include "CommandLine.h"
#include "Look.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace show {

/// What kelpix-show is to do.
struct Options {
    commandline::Action action = commandline::Action::work;
    std::filesystem::path media; ///< empty = not named
    std::optional<double> every; ///< seconds; none = the length of the voice
    Look look;
    std::filesystem::path statusFile; ///< empty = none
    double patience = 5;              ///< seconds
    std::vector<std::string> command; ///< to be conducted instead of the launcher; empty = none
};

/// \param arguments  without the program's name; a word that is no option is the folder of media,
///                   and what follows "--" the command
/// Throws commandline::UsageError when they make no sense.
Options parseOptions(const std::vector<std::string>& arguments);

std::string usage();

} // namespace show
