#pragma once

#include <filesystem>
#include <string>

namespace media {

/// Writes a whole file, making the folders above it. It is written beside its place under the name
/// with ".part" added and then renamed, so that a file that is there is always complete.
/// Throws std::runtime_error with a message for the user, and leaves nothing behind, when the
/// folder cannot be made or the file cannot be written.
void writeFile(const std::filesystem::path& path, const std::string& bytes);

} // namespace media
