#pragma once

#include "FrameRecord.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace wall {

/// Adds a line each second to a file: how the wall does.
///
///     2026-11-22T10:20:31 frame 1234 rate 40.0 skew 0.21 0.84 ms draw 12.3 ms reef-left wait 0.4
///     ms state 0123456789abcdef
///
/// in one line: the time, the last frame, frames per second, median and 95th percentile of how far
/// apart the ranks on the first host's machine left the barrier, the longest time of drawing with
/// its host, the mean time that it left for the others to wait, and the state as one number.
class StatusFile {
public:
    /// Throws std::runtime_error when the file cannot be opened.
    /// \param hosts  of the ranks
    StatusFile(const std::filesystem::path& path, std::vector<std::string> hosts);

    /// \param records  of all ranks, about the frame before
    /// \param now      seconds
    void add(const std::vector<FrameRecord>& records, double now);

private:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    File file;
    std::vector<std::string> hosts;
    double since = 0; ///< of what follows; 0: there was no frame yet
    int frames = 0;
    std::vector<double> skews; ///< ms
    double worstDrawing = 0;   ///< ms
    std::size_t worstRank = 0;
    double waiting = 0; ///< ms, summed over frames and ranks

    void write(const std::vector<FrameRecord>& records, double seconds);
};

} // namespace wall
