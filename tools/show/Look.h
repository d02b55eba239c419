#pragma once

#include <optional>

namespace show {

/// How the windows of the showings look.
struct Look {
    bool fullscreen = false;
    int zoom = 0;               ///< steps of the wheel, above 0 zooms in
    std::optional<int> monitor; ///< of the X screen, counted from 0; none = as in Screen
};

} // namespace show
