#include "Replay.h"

#include "MediaHash.h"
#include "StateNumber.h"

#include <algorithm>
#include <cmath>

namespace record {

namespace {

/// The tile that the options name; the whole wall as one tile when they name none.
WallTile tileOf(const WallLayout& wall, const std::optional<Tile>& named)
{
    if (!named) {
        const PixelRect all = {0, 0, wall.width, wall.height};
        WallTile whole = wall.tiles.front();
        whole.desktop = whole.wall = whole.viewport = whole.drawn = all;
        return whole;
    }
    const auto tile = std::find_if(wall.tiles.begin(), wall.tiles.end(), [&](const WallTile& t) {
        return t.column == named->column && t.row == named->row;
    });
    if (tile == wall.tiles.end()) {
        throw std::runtime_error("the wall has no tile at column " + std::to_string(named->column) +
                                 ", row " + std::to_string(named->row));
    }
    return *tile;
}

PixelRect scaled(const PixelRect& rectangle, double x, double y)
{
    const auto rounded = [](double value) { return static_cast<int>(std::lround(value)); };
    return {rounded(rectangle.x * x), rounded(rectangle.y * y), rounded(rectangle.w * x),
            rounded(rectangle.h * y)};
}

/// That tile in the size of the picture.
WallTile shownTile(const WallLayout& wall, const Options& options)
{
    WallTile tile = tileOf(wall, options.tile);
    tile.blend = {}; // for projectors, not for a picture
    tile.gain = {1, 1, 1};
    const double x = static_cast<double>(options.width) / tile.desktop.w;
    const double y = static_cast<double>(options.height) / tile.desktop.h;
    tile.viewport = scaled(tile.viewport, x, y);
    tile.drawn = scaled(tile.drawn, x, y);
    return tile;
}

} // namespace

Replay::Replay(const Options& options)
    : show(options.replay), shown(shownTile(show.layout(), options)),
      scene(show.layout(), shown, {0, 0})
{
    if (wall::hashOfMedia() != show.head().media) {
        throw std::runtime_error("the media are not those of the show; --media names others");
    }
    wall::checkLimits(shown);
    scene.begin(show.head().seed);
}

void Replay::playStep()
{
    const std::optional<wall::ShowFrame> frame = show.next();
    if (!frame) {
        throw std::runtime_error("the show is over");
    }
    if (frame->step < 0 || frame->step >= scene.numSteps()) {
        throw std::runtime_error("frame " + std::to_string(frame->frame) +
                                 " is of a step that the recording does not have");
    }
    if (frame->anew) {
        scene.begin(*frame->anew);
    }
    for (const wall::InputEvent& event : frame->inputs) {
        scene.give(event);
    }
    scene.update(frame->step, frame->poses);
    scene.draw();
    if (hash().whole() != frame->state) {
        throw std::runtime_error("frame " + std::to_string(frame->frame) +
                                 " is not as it was in the show");
    }
}

StateHash Replay::hash() const
{
    return scene.hash();
}

void Replay::chooseSize(Options& options)
{
    if (options.sizeGiven) {
        return;
    }
    const wall::ShowReader show(options.replay);
    const PixelRect size = tileOf(show.layout(), options.tile).desktop;
    const int unit = options.out.empty() ? 1 : 2;
    options.width = std::max(size.w / unit, 1) * unit;
    options.height = std::max(size.h / unit, 1) * unit;
}

std::int64_t Replay::length(const std::filesystem::path& log)
{
    wall::ShowReader show(log);
    std::int64_t frames = 0;
    while (show.next()) {
        ++frames;
    }
    return frames;
}

} // namespace record
