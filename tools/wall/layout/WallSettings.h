#pragma once

#include "PixelRect.h"
#include "TileDescription.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// The second file of a wall, beside its description: what the description has no word for. The
/// second file of reef.cfg is reef.cfg.more. All of it is optional, the file too.
///
/// The grammar, as that of the description: words that any white space separates, case matters.
///
///     "Wall", then in any order, each at most once:
///         "Rate" number           frames per second, 10 to 120
///         "Seed" int              of the scene's random numbers, 0 to 4294967295
///         "Fit" "contain"|"cover" of the square scene in the wall
///         "Media" word            folder of the media
///     then for any number of windows:
///         "Map" int int           the window, by the column and row of its Map
///         in any order, each at most once:
///             "Display" word      the X display of its host, such as :0.1
///             "Place" int int int int         x, y, width, height on the wall
///             "Blend" int int int int number  widths left, right, bottom, top; gamma
///             "Gain" number number number     red, green, blue, 0 to 1

/// How a scene that is square fits into a wall that is not.
enum class Fit {
    contain, ///< the whole square is seen, and what is beside it
    cover    ///< the square fills the wall, which cuts it
};

/// The ramps at the edges of a tile that overlaps with its neighbors.
struct Blend {
    int left = 0; ///< width in pixels of the window, as the next three; 0 = no ramp
    int right = 0;
    int bottom = 0;
    int top = 0;
    float gamma = 2.2f; ///< of the projector, 1 to 3: light = value ^ gamma

    bool operator==(const Blend&) const = default;
};

/// The settings of one window.
struct WindowSettings {
    long line = 0;       ///< of its Map in the file
    std::string display; ///< empty = that of the session
    std::optional<PixelRect>
        place;                  ///< pixels of the wall, origin at the top left; none = its Map's
    std::optional<Blend> blend; ///< none = as the tiles overlap
    std::array<float, 3> gain = {1, 1, 1}; ///< light of red, green, blue, 0 to 1
};

/// The settings of a wall.
struct WallSettings {
    std::optional<double> rate;
    std::optional<unsigned> seed;
    std::optional<Fit> fit;
    std::string media;                                     ///< empty = not given
    std::map<std::pair<int, int>, WindowSettings> windows; ///< by column and row
};

/// Reads a second file.
/// \param bytes     of the whole file
/// \param name      of the file, for messages
/// \param settings  receives them; after a problem, those before it
/// \return nothing when the file is complete
/// \throws std::bad_alloc
std::optional<TileProblem> parseWallSettings(std::string_view bytes, const std::string& name,
                                             WallSettings& settings);
