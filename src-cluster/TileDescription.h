#pragma once

#include "TileConfig.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What is wrong with a description, and where.
struct TileProblem {
    std::string file; ///< as its reader was told
    long line = 0;    ///< counted from 1; 0 = the file as a whole
    std::string what; ///< one line, safe to print, without a full stop

    /// \return "FILE:LINE: WHAT", safe to print
    std::string text() const;
};

struct TileRecords; // TileReader.h

/// A description of TileConfig's format, for programs that look at the whole wall, not at one host
/// of it: nobody asks for the name of this machine, no end of the process, no output.
///
/// The reader is stricter than TileConfig. It refuses a word that is not a whole number or number
/// where one belongs, a negative count, a host name that does not fit, and words after the last
/// host. What it takes, TileConfig reads to the same values.
///
/// \code
/// TileDescription wall;
/// if (const auto problem = wall.parse(bytes, "reef.cfg")) {
///     std::fprintf(stderr, "%s\n", problem->text().c_str());
/// }
/// \endcode
class TileDescription {
public:
    Cluster cluster; ///< the wall; its pointers lead to records that this object owns

    TileDescription();
    ~TileDescription();
    TileDescription(TileDescription&& other) noexcept;
    TileDescription& operator=(TileDescription&& other) noexcept;

    /// Reads a description, in place of what was read before.
    /// \param bytes  of the whole file
    /// \param name   of the file, for messages
    /// \return nothing when the description is complete. After a problem cluster has the hosts that
    ///         were complete
    /// \throws std::bad_alloc
    std::optional<TileProblem> parse(std::string_view bytes, const std::string& name);

    /// \param window  counted from 0 over all hosts, in file order
    /// \return the line of the window's Map; 0 when there is no such window
    long lineOf(std::size_t window) const;

private:
    std::unique_ptr<TileRecords> records_;
    std::vector<long> lines_; ///< of the windows
};
