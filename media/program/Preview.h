#pragma once

#include <filesystem>

namespace media {

/// Lets kelpix-record, which lies beside this program, play the scene of a folder and save five
/// moments of it in a picture. What kelpix-record prints is seen.
/// \param picture  ends in .png
/// \param force    replaces a file
/// Throws std::runtime_error, with a line for the user, when there is no such program or it fails.
void makePreview(const std::filesystem::path& folder, const std::filesystem::path& picture,
                 bool force);

} // namespace media
