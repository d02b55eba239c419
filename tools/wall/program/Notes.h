#pragma once

#include "LineFile.h"
#include "ShowLog.h"
#include "StatusFile.h"

#include <filesystem>
#include <optional>

namespace wall {

struct FrameRecord;
struct Options;
struct Orders;
struct Rank;

/// What rank 0 writes down of a show, as far as the user has asked for it: a line for each frame
/// (--hash), a line for each second (--status), and the log.
///
/// A file that takes nothing more, because the disk is full, is given up with a line for the user;
/// the show goes on. Of the status only that line is said once: a later one may be written.
class Notes {
public:
    /// Opens the files. Throws std::runtime_error when one of them cannot be opened.
    /// \param options  borrows, its paths absolute
    Notes(const Options& options, const Rank& rank);

    /// Writes down what the ranks say of the frame before.
    /// \param now  seconds
    void addFrameBefore(const Orders& orders, double now);

    /// Writes down the frame that has been played.
    /// \param own  rank 0's record, with the state after it
    void addFrame(const FrameRecord& own, const Orders& orders);

    /// Whether all frames have been written down, as far as the user has asked for them.
    bool areComplete() const { return complete; }

private:
    const Options& options;
    std::optional<LineFile> hash;
    std::optional<StatusFile> status;
    std::optional<ShowWriter> log;
    bool complete = true;
    bool isStatusMissing = false; ///< which has been said

    void addStatus(const Orders& orders, double now);
    void giveUp(const std::filesystem::path& path);
};

} // namespace wall
