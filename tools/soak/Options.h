#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace soak {

/// What the command line says.
struct Options {
    bool help = false;
    bool version = false;
    double hours = 72;
    std::vector<unsigned> seeds = {1, 2};
    std::filesystem::path media; ///< empty: this folder if it holds media, else the installed ones
    std::optional<double> voiceSeconds; ///< none: as long as the media's voice
    int every = 60;                     ///< minutes between two lines
};

/// A command line that makes no sense; the text says what is wrong with it.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// \param arguments  without the program's name
/// Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace soak
