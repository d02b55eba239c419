#pragma once

#include "Picture.h"

#include <filesystem>

namespace record {

/// Writes a picture as PNG, 8 bits a channel, without its alpha.
/// Throws std::runtime_error, with the bare reason, when the file cannot be written.
void writePng(const std::filesystem::path& path, const Picture& picture);

} // namespace record
