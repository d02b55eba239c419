#pragma once

#include <filesystem>
#include <optional>

namespace show {

/// \return the seconds that the voice in a folder of media lasts; none when it cannot be played
std::optional<double> voiceLength(const std::filesystem::path& folder);

} // namespace show
