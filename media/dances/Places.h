#pragma once

#include "Point.h"
#include "Score.h"
#include "VisibleWorld.h"

#include <array>

namespace media {

/// The part of the world in which figures dance for a certain view, so that body and tentacles are
/// seen whole.
Region stageIn(const Region& view);

/// Where the figures are when a phrase ends.
/// \param phrase  counted from the start of the piece
/// \return places in the scene's world
std::array<Point, FIGURES> placesAfter(std::size_t phrase, const Region& stage);

/// Where the figures come together in the coda.
std::array<Point, FIGURES> farewellPlaces(const Region& stage);

} // namespace media
