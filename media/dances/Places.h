#pragma once

#include "Point.h"
#include "Score.h"
#include "VisibleWorld.h"

#include <array>
#include <cstddef>

namespace media {

/// The part of the world in which figures dance for a certain view, so that body and tentacles are
/// seen whole.
Region stageIn(const Region& view);

/// Where the figures are when a phrase ends.
/// \param phrase  counted from the start of the piece
/// \return places in the scene's world
std::array<Point, FIGURES> placesAfter(std::size_t phrase, const Region& stage);

/// How the figures end a piece: they come together, and then leave through the top.
struct Ending {
    std::array<Point, FIGURES> places; ///< where they come together, in the scene's world
    std::size_t strokes;               ///< notes of FAREWELL on which they beat before they leave
    double beats;                      ///< of the coda before they leave
};

/// The ending for a certain view. Fish that the leaving figures draw along come to rest right below
/// the top of the world. Where that is in view, the figures leave as the last breath begins.
/// Elsewhere they stay until near its end. Their schools swing up and down around them, once in
/// about 3.5 s: then these are sinking, and the pull of the leaving figures no more than stops
/// them.
Ending endingIn(const Region& view);

} // namespace media
