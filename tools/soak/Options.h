#pragma once

#include "CommandLine.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace soak {

/// What the command line says.
struct Options {
    commandline::Action action = commandline::Action::work;
    double hours = 72;
    std::vector<unsigned> seeds = {1, 2};
    std::filesystem::path media; ///< empty: this folder if it holds media, else the installed ones
    std::optional<double> voiceSeconds; ///< none: as long as the media's voice
    int every = 60;                     ///< minutes between two lines
};

/// \param arguments  without the program's name
/// Throws commandline::UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace soak
