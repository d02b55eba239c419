#pragma once

#include "OpenFile.h"

#include <filesystem>
#include <string>

namespace wall {

/// A text that grows line by line. Each line is handed to the system at once, so that whoever is
/// killed has written what it added.
class LineFile {
public:
    /// Makes the file, or empties it. Throws std::runtime_error, with a line for the user, when it
    /// cannot be opened, and for a pipe, which could keep its writer waiting.
    explicit LineFile(const std::filesystem::path& path);

    /// \param line  with its end, or several of them
    /// \return false when the file does not take it, because it is full or the disk is: errno says
    ///         why. Then part of a line may be in it, and nothing more should be added.
    bool add(const std::string& line);

private:
    Files::Handle file;
};

} // namespace wall
