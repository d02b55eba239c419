#pragma once

#include "Place.h"
#include "Vector.h"

/// What a sensor (Sensor) makes of a recorded position, and back.
namespace RecordedPlace {

/// Where the figure of a record is after an update that has met it for the first time.
/// \param figure  0, 1 or 2
Vec3 placeOf(const Vec3& recorded, int figure);

/// The record with which a figure comes to a place: exactly, where single precision has such a
/// record, else as near as it can.
/// \param place  finite; it is rounded to single precision
/// \param z      of the record; it is not shown
Vec3 recordFor(Place place, int figure, float z);

} // namespace RecordedPlace
