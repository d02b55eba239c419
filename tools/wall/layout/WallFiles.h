#pragma once

#include "TileDescription.h"

#include <optional>
#include <string>

/// The bytes of a wall's two files. The first host reads them and sends them to the others, so that
/// no host needs a copy of its own.
struct WallFiles {
    std::string name;        ///< of the description, as given
    std::string description; ///< the bytes of TileConfig's format
    bool hasMore = false;    ///< there is a second file
    std::string more;        ///< its bytes, those of WallSettings.h

    /// \return the name of the second file
    std::string nameOfMore() const { return name + ".more"; }
};

/// Reads a description and, if there is one beside it, its second file.
/// \return what is wrong with a file that is no regular one, cannot be read, or is longer than
///         1 MiB; that there is no second file is no problem
/// \throws std::bad_alloc
std::optional<TileProblem> readWallFiles(const std::string& name, WallFiles& files);
