#pragma once

#include "CommandLine.h"
#include "FigureAddress.h"
#include "WallLayout.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace wall {

/// What the command line says.
struct Options {
    commandline::Action action = commandline::Action::work;
    std::filesystem::path description; ///< the wall's file
    bool simulate = false;             ///< all tiles on this desktop
    double scale = 1;                  ///< of the tiles, when simulated
    bool pattern = false;              ///< the test pattern instead of the scene
    bool loop = false;                 ///< begins again at the end of the voice
    bool isVirtual = false;            ///< no sound, no pacing
    std::optional<Fit> fit;            ///< none: as the wall's files say
    std::optional<unsigned> seed;      ///< none: as the wall's files say, else the time
    std::uint32_t frames = 0;          ///< after so many frames the wall ends; 0: never
    std::filesystem::path media; ///< empty: as the wall's files say, else as mediaToPlay chooses
    std::optional<FigureAddress> osc; ///< where messages lead the figures
    std::filesystem::path log;        ///< empty, like those below: not asked for
    std::filesystem::path status;
    std::filesystem::path hash;
    std::filesystem::path shots;           ///< the folder of pictures
    std::vector<std::uint32_t> shotFrames; ///< of these frames
};

/// \param arguments  without the program's name
/// Throws commandline::UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace wall
