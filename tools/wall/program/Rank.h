#pragma once

#include "FigureInput.h"
#include "HeldMessages.h"
#include "Plan.h"
#include "SceneSound.h"
#include "TilePattern.h"
#include "TileWindow.h"
#include "WallScene.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace wall {

/// What one rank of a wall plays with, from the first step of its preparation to its last frame. It
/// stays where it is: the scene borrows from the plan.
struct Rank {
    int number = 0;
    std::vector<std::string> hosts; ///< of all ranks
    Plan plan;
    std::uint64_t media = 0;              ///< hashOfMedia
    std::optional<HeldMessages> messages; ///< what the scene prints, from its beginning on
    std::optional<TileWindow> window;     ///< made before what is drawn in it
    std::optional<WallScene> scene;       ///< none for a test pattern
    std::optional<TilePattern> pattern;   ///< instead of the scene, if it is asked for
    std::optional<SceneSound> sound;      ///< of rank 0, unless the clock is virtual

    std::unique_ptr<FigureInput> figures; ///< of rank 0, if messages lead the figures

    Rank() = default;
    Rank(const Rank&) = delete;
    Rank& operator=(const Rank&) = delete;

    bool isFirst() const { return number == 0; }
    const WallTile& tile() const { return plan.layout.tiles[static_cast<std::size_t>(number)]; }

    /// What to say when the scene's readers end the process: the last line that they have printed,
    /// with the one before it if that names the file.
    /// To be called once messages are held.
    /// \param errors  what they have printed to standard error
    std::string readersComplaint(const std::string& errors = "") const;
};

} // namespace wall
