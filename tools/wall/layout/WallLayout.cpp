#include "WallLayout.h"

#include "Overlap.h"
#include "Printable.h"
#include "WindowCameras.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

namespace {

constexpr int MOST_COLUMNS = 64; // and rows
constexpr float LEAST_MULLION = -0.5F;
constexpr float MOST_MULLION = 10;
constexpr int FARTHEST = 32767; ///< place on a desktop

/// The most pixels of a window for one of the wall, and the most of the wall for one of a window.
constexpr double DENSEST = 16;

int rounded(double value)
{
    return static_cast<int>(std::lround(value));
}

std::string pair(int a, int b)
{
    return std::to_string(a) + " " + std::to_string(b);
}

std::string size(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

bool isHostName(std::string_view name)
{
    constexpr const char* LETTERS =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    return !name.empty() && std::string_view(LETTERS).find(name[0]) != std::string_view::npos &&
           name.find_first_not_of(std::string(LETTERS) + ".-_") == std::string_view::npos;
}

/// Makes a layout of a description and settings. Its functions throw TileProblem.
class Builder {
public:
    Builder(const WallFiles& files, const TileDescription& description,
            const WallSettings& settings, WallLayout& layout)
        : files_(files), description_(description), settings_(settings), layout_(layout)
    {
    }

    void build();

private:
    const WallFiles& files_;
    const TileDescription& description_;
    const WallSettings& settings_;
    WallLayout& layout_;
    std::vector<std::array<float, 2>> offsets_;        ///< by rank
    std::map<std::pair<int, int>, std::size_t> ranks_; ///< by column and row

    [[noreturn]] void refuse(const std::string& what) const
    {
        throw TileProblem{files_.name, 0, what};
    }
    [[noreturn]] void refuse(const WallTile& tile, const std::string& what) const;
    [[noreturn]] void refuse(const WindowSettings& window, const std::string& what) const
    {
        throw TileProblem{files_.nameOfMore(), window.line, what};
    }

    void readGrid();
    void readHosts();
    void readWindow(const WindowEntity& window, WallTile& tile);
    void readSettings();
    void readSettings(const WindowSettings& window, WallTile& tile) const;
    void placeGrid();
    void measureWall();
    void placeOnWall(WallTile& tile) const;
};

void Builder::refuse(const WallTile& tile, const std::string& what) const
{
    throw TileProblem{files_.name, description_.lineOf(static_cast<std::size_t>(tile.rank)),
                      "host " + tile.host + ", window " + std::to_string(tile.window) + ": " +
                          what};
}

void Builder::build()
{
    layout_ = WallLayout();
    readGrid();
    readHosts();
    readSettings();
    placeGrid();
    measureWall();
    for (WallTile& tile : layout_.tiles) {
        placeOnWall(tile);
    }
    blendOverlaps(layout_);
}

void Builder::readGrid()
{
    const Cluster& wall = description_.cluster;
    layout_.columns = wall.tilemap[0];
    layout_.rows = wall.tilemap[1];
    for (const int count : wall.tilemap) {
        if (count < 1 || count > MOST_COLUMNS) {
            refuse("TileMap " + pair(layout_.columns, layout_.rows) +
                   ": a wall has 1 to 64 columns and 1 to 64 rows");
        }
    }
    for (const float mullion : wall.mullions) {
        if (mullion < LEAST_MULLION || mullion > MOST_MULLION) {
            std::ostringstream text;
            text << "Mullions " << wall.mullions[0] << " " << wall.mullions[1]
                 << ": a gap is at most 10 tiles wide, and tiles overlap by at most half: -0.5";
            refuse(text.str());
        }
    }
}

void Builder::readHosts()
{
    std::set<std::string_view> names;
    for (const ClusterNode* node : description_.cluster.nList) {
        const std::string name = Files::printable(node->hostname);
        if (!isHostName(node->hostname)) {
            refuse("Hostname \"" + name +
                   "\": a name has letters, digits, '.', '-' and '_', and starts with a letter or "
                   "digit");
        }
        if (!names.insert(node->hostname).second) {
            refuse("Hostname " + name + " stands twice: one entry lists all windows of a host");
        }
        int window = 0;
        for (const WindowEntity* entity : node->wList) {
            if (layout_.tiles.size() == WallLayout::MOST_TILES) {
                refuse("there are more than " + std::to_string(WallLayout::MOST_TILES) +
                       " windows");
            }
            WallTile& tile = layout_.tiles.emplace_back();
            tile.rank = static_cast<int>(layout_.tiles.size()) - 1;
            tile.host = node->hostname;
            tile.window = window++;
            readWindow(*entity, tile);
        }
    }
    if (layout_.tiles.empty()) {
        refuse("the wall has no window");
    }
}

void Builder::readWindow(const WindowEntity& window, WallTile& tile)
{
    const auto [column, row] = window.mapping;
    tile.column = column;
    tile.row = row;
    if (column < 0 || column >= layout_.columns || row < 0 || row >= layout_.rows) {
        refuse(tile, "Map " + pair(column, row) + " is outside of the grid: TileMap " +
                         pair(layout_.columns, layout_.rows) + " has columns 0 to " +
                         std::to_string(layout_.columns - 1) + " and rows 0 to " +
                         std::to_string(layout_.rows - 1));
    }
    const auto [other, isNew] = ranks_.try_emplace({column, row}, tile.rank);
    if (!isNew) {
        refuse(tile, "Map " + pair(column, row) + " is that of another window, of host " +
                         layout_.tiles[other->second].host);
    }
    const auto [x, y, w, h] = window.location;
    tile.desktop = {x, y, w, h};
    if (w < 1 || w > WallLayout::LARGEST_TILE || h < 1 || h > WallLayout::LARGEST_TILE) {
        refuse(tile, "Location: a window of " + size(w, h) + " pixels; each side has 1 to 16384");
    }
    if (x < -FARTHEST || x > FARTHEST || y < -FARTHEST || y > FARTHEST) {
        refuse(tile, "Location: there is no place " + pair(x, y) + " on a desktop");
    }
    WindowCameras cameras = joinCameras(window);
    if (!cameras.problem.empty()) {
        refuse(tile, cameras.problem);
    }
    tile.drawn = cameras.drawn;
    offsets_.push_back(cameras.offset);
}

void Builder::readSettings()
{
    layout_.rate = settings_.rate.value_or(layout_.rate);
    layout_.seed = settings_.seed;
    layout_.fit = settings_.fit.value_or(layout_.fit);
    layout_.media = settings_.media;
    for (const auto& [cell, window] : settings_.windows) {
        const auto rank = ranks_.find(cell);
        if (rank == ranks_.end()) {
            refuse(window, "no window has Map " + pair(cell.first, cell.second));
        }
        readSettings(window, layout_.tiles[rank->second]);
    }
}

void Builder::readSettings(const WindowSettings& window, WallTile& tile) const
{
    tile.display = window.display;
    tile.gain = window.gain;
    const int w = tile.desktop.w;
    const int h = tile.desktop.h;
    if (window.blend) {
        tile.blend = *window.blend;
        tile.blendIsGiven = true;
        if (tile.blend.left + tile.blend.right > w || tile.blend.bottom + tile.blend.top > h) {
            refuse(window,
                   "Blend: the ramps are wider than the window of " + size(w, h) + " pixels");
        }
    }
    if (window.place) {
        tile.place = *window.place;
        tile.isPlaced = true;
        for (const double density :
             {static_cast<double>(w) / tile.place.w, static_cast<double>(h) / tile.place.h}) {
            if (density > DENSEST || density < 1 / DENSEST) {
                refuse(window, "Place: a window of " + size(w, h) + " pixels cannot show " +
                                   size(tile.place.w, tile.place.h) +
                                   " of the wall: more than 16 times too many or too few");
            }
        }
    }
}

/// Finds the places of the tiles that the second file does not place.
void Builder::placeGrid()
{
    const float(&mullions)[2] = description_.cluster.mullions;
    const WallTile* first = nullptr;
    for (WallTile& tile : layout_.tiles) {
        if (tile.isPlaced) {
            continue;
        }
        const auto [x, y, w, h] = tile.desktop;
        if (first == nullptr) {
            first = &tile;
            layout_.pitch = {rounded(w * (1 + static_cast<double>(mullions[0]))),
                             rounded(h * (1 + static_cast<double>(mullions[1])))};
        } else if (w != first->desktop.w || h != first->desktop.h) {
            refuse(tile, "Location: a window of " + size(w, h) + " pixels beside those of " +
                             size(first->desktop.w, first->desktop.h) +
                             ": tiles of several sizes need a Place in " + files_.nameOfMore());
        }
        tile.place = {tile.column * layout_.pitch[0], tile.row * layout_.pitch[1], w, h};
    }
}

/// The wall is as large as its grid, in which tiles may be missing. When the second file places a
/// tile, the wall is as large as all tiles together.
void Builder::measureWall()
{
    const std::vector<WallTile>& tiles = layout_.tiles;
    if (std::none_of(tiles.begin(), tiles.end(), [](const WallTile& t) { return t.isPlaced; })) {
        layout_.width = (layout_.columns - 1) * layout_.pitch[0] + tiles[0].place.w;
        layout_.height = (layout_.rows - 1) * layout_.pitch[1] + tiles[0].place.h;
    }
    for (const WallTile& tile : tiles) {
        layout_.width = std::max(layout_.width, tile.place.x + tile.place.w);
        layout_.height = std::max(layout_.height, tile.place.y + tile.place.h);
    }
    if (std::max(layout_.width, layout_.height) > WallLayout::LARGEST_WALL) {
        refuse("the wall has " + size(layout_.width, layout_.height) +
               " pixels; each side has at most " + std::to_string(WallLayout::LARGEST_WALL));
    }
}

void Builder::placeOnWall(WallTile& tile) const
{
    const auto& offset = offsets_[static_cast<std::size_t>(tile.rank)];
    const PixelRect& place = tile.place;
    tile.wall = {place.x + rounded(static_cast<double>(offset[0]) * place.w),
                 layout_.height - place.y - place.h +
                     rounded(static_cast<double>(offset[1]) * place.h),
                 place.w, place.h};
    const double x = static_cast<double>(tile.desktop.w) / place.w;
    const double y = static_cast<double>(tile.desktop.h) / place.h;
    tile.viewport = {-rounded(tile.wall.x * x), -rounded(tile.wall.y * y),
                     rounded(layout_.width * x), rounded(layout_.height * y)};
}

} // namespace

float WallLayout::projectionScale() const
{
    const float aspect = static_cast<float>(width) / static_cast<float>(height);
    return fit == Fit::contain ? std::min(1.0F, aspect) : std::max(1.0F, aspect);
}

std::optional<TileProblem> layOut(const WallFiles& files, WallLayout& layout)
{
    TileDescription description;
    if (auto problem = description.parse(files.description, files.name)) {
        return problem;
    }
    WallSettings settings;
    if (files.hasMore) {
        if (auto problem = parseWallSettings(files.more, files.nameOfMore(), settings)) {
            return problem;
        }
    }
    try {
        Builder(files, description, settings, layout).build();
    } catch (const TileProblem& problem) {
        return problem;
    }
    return {};
}

std::optional<std::string> beyondLimits(const WallTile& tile, const GLLimits& limits)
{
    const PixelRect& viewport = tile.viewport;
    if (viewport.w > limits.viewport[0] || viewport.h > limits.viewport[1]) {
        return "the wall has " + size(viewport.w, viewport.h) +
               " of this window's pixels, and OpenGL draws at most " +
               size(limits.viewport[0], limits.viewport[1]) + " here";
    }
    const auto [low, high] = limits.bounds;
    const auto isBeyond = [low = low, high = high](int origin) {
        return (low != 0 || high != 0) &&
               (static_cast<float>(origin) < low || static_cast<float>(origin) > high);
    };
    if (isBeyond(viewport.x) || isBeyond(viewport.y)) {
        std::ostringstream text;
        text << "the wall's corner is at " << viewport.x << " " << viewport.y
             << " from this window's, and OpenGL draws from " << low << " to " << high << " here";
        return text.str();
    }
    return {};
}
