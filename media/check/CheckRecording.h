#pragma once

#include "CheckReport.h"
#include "Point.h"

#include <array>
#include <vector>

namespace media {

/// A recording as the scene reads it.
struct Recording {
    /// The recorded positions of the three sensors, one entry a record.
    std::vector<std::array<Point, 3>> positions;
    float end = 0; ///< the time of the last record, which the scene does not use
};

/// Reads a recording as the scene does, and remarks on what was probably meant otherwise. A folder
/// and a file without words give a single record of zeros. \param shown  a figure follows it; of
/// others the scene only counts the records \return no records when the file cannot be opened
Recording readRecording(const std::filesystem::path& path, bool shown, FileReport& report);

} // namespace media
