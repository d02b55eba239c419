#pragma once

#include "FrameRecord.h"
#include "SteeredRecording.h"

#include <optional>

namespace wall {

/// Writes the places of figures into what rank 0 decides.
void setPoses(Lead& lead, const Poses& poses);

/// \return these places, exactly; none where no figure can be led
std::optional<Poses> posesOf(const Lead& lead);

} // namespace wall
