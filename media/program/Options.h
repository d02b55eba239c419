#pragma once

#include "Assets.h"
#include "CommandLine.h"

#include <string>
#include <vector>

namespace media {

/// What the command line says.
struct Options {
    commandline::Action action = commandline::Action::work;
    Request request;
    std::filesystem::path out;
    bool force = false;            ///< replace files of other contents
    std::filesystem::path check;   ///< empty = make the set; else the folder to look at
    std::filesystem::path preview; ///< with check: a picture of the scene; empty = none
    const Asset* only = nullptr;   ///< null = the whole set
    bool isLengthGiven = false;    ///< by --seconds; else request.seconds is the default
};

/// \param arguments  without the program's name
/// Throws commandline::UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace media
