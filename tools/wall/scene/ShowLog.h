#pragma once

#include "FrameRecord.h"
#include "LineFile.h"
#include "OpenFile.h"
#include "SteeredRecording.h"
#include "WallLayout.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace wall {

/// All that a show on a wall came from, so that it can be played again: the wall's files, and for
/// each frame the step of the recording, the input, and the state that came of it. A text of some
/// 30 bytes a frame:
///
///     kelpix-wall log 1
///     version 0.1.0
///     media 0123456789abcdef        hashOfMedia
///     simulated 0.25                --scale, 0 without --simulate
///     fit contain
///     seed 7
///     description 123 reef.cfg      so many bytes follow, and the end of a line
///     more 0                        the same of the second file; -1: there is none
///     frames
///     1 0 0123456789abcdef          frame, step, state as one number (numberOf)
///     2 1 0123456789abcdef anew 8   the scene began again with this seed
///     3 3 0123456789abcdef event 5 100 200 118 0    kind, x, y, key, wheel; as often as there are
///     4 5 0123456789abcdef steered figure 1 0.25 0.5    in each frame of a show whose figures can
///                                   be led: where those are that were, in the water's units
struct ShowHead {
    std::string version;
    std::uint64_t media = 0;
    double simulated = 0;
    Fit fit = Fit::contain;
    unsigned seed = 0;
    WallFiles files;
};

/// A frame of a show.
struct ShowFrame {
    std::uint32_t frame = 0;
    int step = 0;
    std::uint64_t state = 0;         ///< after it
    std::optional<unsigned> anew;    ///< the seed with which the scene began again before it
    std::vector<InputEvent> inputs;  ///< before its update
    std::optional<Poses> poses = {}; ///< in its update, where figures can be led
};

/// Writes a show down. Throws std::runtime_error when the file cannot be written.
class ShowWriter {
public:
    ShowWriter(const std::filesystem::path& path, const ShowHead& head);

    /// \return false when the file does not take the frame; errno says why. The log then ends with
    ///         the frames before, and nothing more should be added.
    bool add(const ShowFrame& frame);

private:
    LineFile file;
};

/// A file that is no log, or is damaged. The text says where.
class ShowError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads a show frame by frame. Throws ShowError.
class ShowReader {
public:
    explicit ShowReader(const std::filesystem::path& path);

    const ShowHead& head() const { return first; }

    /// The wall of the show.
    const WallLayout& layout() const { return wall; }

    /// \return the next frame; none at the end, or where the log breaks off within a line
    std::optional<ShowFrame> next();

private:
    Files::Handle file;
    std::string name;
    ShowHead first;
    WallLayout wall;
    std::uint32_t frames = 0;

    [[noreturn]] void refuse(const std::string& what) const;
    std::optional<std::string> line();
    std::string field(const char* keyword);
    std::string bytes(std::size_t count);
    void readHead();
};

} // namespace wall
