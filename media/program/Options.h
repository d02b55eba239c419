#pragma once

#include "Assets.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace media {

/// What the command line says.
struct Options {
    bool help = false;
    bool version = false;
    Request request;
    std::filesystem::path out;
    std::filesystem::path check; ///< empty = make the set; else the folder to look at
    const Asset* only = nullptr; ///< null = the whole set
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

} // namespace media
