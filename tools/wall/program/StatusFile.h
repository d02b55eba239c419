#pragma once

#include "FrameRecord.h"

#include "LatestLine.h"

#include <filesystem>
#include <string>
#include <vector>

namespace wall {

/// Writes a line each second, in place of the one before: how the wall does.
///
///     time=2026-11-22T10:20:31Z frame=1234 rate=40.0 skew_ms=0.21 skew_p95_ms=0.84 draw_ms=12.3
///     slowest=reef-left wait_ms=0.4 state=0123456789abcdef
///
/// in one line: the time, the last frame, frames per second, median and 95th percentile of how far
/// apart the ranks on the first host's machine left the barrier, the longest time of drawing with
/// its host, the mean time that it left for the others to wait, and the state as one number.
class StatusFile {
public:
    /// Throws std::runtime_error, with a line for the user, when the file cannot be written.
    /// \param hosts  of the ranks
    StatusFile(const std::filesystem::path& path, std::vector<std::string> hosts);

    /// Throws std::runtime_error, with a line for the user, when the line of this second cannot be
    /// written; the next one may be.
    /// \param records  of all ranks, about the frame before
    /// \param now      seconds
    void add(const std::vector<FrameRecord>& records, double now);

private:
    status::LatestLine file;
    std::vector<std::string> hosts;
    double since = 0; ///< of what follows; 0: there was no frame yet
    int frames = 0;
    std::vector<double> skews; ///< ms
    double worstDrawing = 0;   ///< ms
    std::size_t worstRank = 0;
    double waiting = 0; ///< ms, summed over frames and ranks

    /// \param seconds  since the line before
    std::string lineOf(const std::vector<FrameRecord>& records, double seconds);
};

} // namespace wall
