#pragma once

#include "Options.h"
#include "PlayedScene.h"
#include "ShowLog.h"
#include "WallScene.h"

#include <cstdint>

namespace record {

/// The scene of a show on a wall, played again from its log: every frame as it was, in the size of
/// the picture.
class Replay final : public PlayedScene {
public:
    /// Reads the head of the log. Throws std::runtime_error when the working directory has other
    /// media than the show, or when its wall has no such tile, wall::ShowError for a damaged log.
    /// \param options  with a log and the size of the picture
    explicit Replay(const Options& options);

    /// Throws std::runtime_error when the scene is not in the state that the log has.
    void playStep() override;

    StateHash hash() const override;

    /// Sets the size to that of the wall or the tile of the log, unless the user has given one:
    /// that of a film in even numbers.
    static void chooseSize(Options& options);

    /// \return the number of frames in a log
    static std::int64_t length(const std::filesystem::path& log);

private:
    wall::ShowReader show;
    WallTile shown;
    wall::WallScene scene;
};

} // namespace record
