#pragma once

#include "CommandLine.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace live {

/// What the command line says.
struct Options {
    commandline::Action action = commandline::Action::work;
    std::filesystem::path bind = "127.0.0.1"; ///< the address that is listened at
    std::uint16_t port = 9000;
    bool fullscreen = false;
    bool loop = false;            ///< begins anew at the end of the voice
    std::optional<unsigned> seed; ///< none: the time
    std::filesystem::path media;  ///< empty: as mediaToPlay chooses
    std::filesystem::path record; ///< empty, like the one below: not asked for
    std::filesystem::path status;
    bool force = false; ///< the recording may replace a file
};

/// \param arguments  without the program's name
/// Throws commandline::UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace live
