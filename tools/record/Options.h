#pragma once

#include "CommandLine.h"
#include "LiveStream.h"
#include "Rates.h"
#include "Time.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace record {

/// A place in the grid of a wall, from the top left.
struct Tile {
    int column;
    int row;
};

/// What the command line says.
struct Options {
    commandline::Action action = commandline::Action::work;
    std::filesystem::path out;          ///< the film; empty = none is asked for
    std::filesystem::path png;          ///< the picture; empty = none is asked for
    std::filesystem::path sheet;        ///< five moments in a picture; empty = none is asked for
    bool force = false;                 ///< film or picture may replace a file
    bool hash = false;                  ///< the numbers of the scene's state are asked for
    LiveFormat live = LiveFormat::none; ///< none = no stream is asked for
    bool flashes = false;               ///< the flashes of the film are to be counted
    Microseconds at = 0;                ///< of picture or numbers, or of the film's first frame
    Microseconds seconds = 30 * SECOND; ///< length of the film
    bool untilVoiceEnds = false;        ///< the film is shorter if the voice is
    int width = 740;                    ///< pixels, like the height
    int height = 740;
    int fps = Rates::REDRAWS;                ///< frames of the film per second
    unsigned seed = 1;                       ///< of the scene's random numbers
    std::filesystem::path media;             ///< empty = as mediaToPlay chooses
    std::filesystem::path script;            ///< empty = no input
    std::filesystem::path replay;            ///< the log of a wall's show; empty = none is played
    std::optional<Tile> tile;                ///< of that wall; none = all of it
    bool sizeGiven = false;                  ///< else width and height are those of wall or tile
    std::vector<std::string> encoderOptions; ///< handed to ffmpeg, before the output's name

    /// Whether many frames are asked for, not one.
    bool isFilm() const { return !out.empty() || flashes || live != LiveFormat::none; }
};

/// \param arguments  without the program's name
/// Throws commandline::UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string usage();

} // namespace record
