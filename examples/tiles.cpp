// tiles: reads the configuration of a tiled display wall, draws the wall in text, and lists what
// each host shows on it.

#include "TileConfig.h"
#include "Usage.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// Not a local of main: readDisplayCfg may end the process, and the configuration is printed at
/// exit.
TileConfig config;

bool isThisHost(const ClusterNode& host)
{
    return &host == config.getThisNodeCfg();
}

/// A window of the wall and its host.
struct Tile {
    const ClusterNode* host = nullptr;
    const WindowEntity* window = nullptr;
};

/// \return the first window in the file that is at a place of the grid; nulls when there is none
Tile tileAt(int column, int row)
{
    for (const ClusterNode* host : config.cluster->nList) {
        for (const WindowEntity* window : host->wList) {
            if (window->mapping[0] == column && window->mapping[1] == row) {
                return {host, window};
            }
        }
    }
    return {};
}

/// Prints one line of a tile, cut or padded to the width of a tile in the drawing.
void printCell(const std::string& text)
{
    std::printf("| %-16.16s ", text.c_str());
}

void printRule(int columns)
{
    for (int column = 0; column < columns; ++column) {
        std::printf("+------------------");
    }
    std::puts("+");
}

/// Draws the wall. TileMap is columns and rows; Map is the column and row of a window, counted from
/// 0 at the top left; Location is x, y, width and height in pixels of the host's desktop.
void printWall()
{
    const int columns = config.cluster->tilemap[0];
    const int rows = config.cluster->tilemap[1];
    if (columns < 1 || columns > 12 || rows < 1 || rows > 24) {
        std::puts("(a wall of this size is not drawn)");
        return;
    }
    for (int row = 0; row < rows; ++row) {
        printRule(columns);
        for (int column = 0; column < columns; ++column) {
            const Tile tile = tileAt(column, row);
            const char* mark = tile.host != nullptr && isThisHost(*tile.host) ? "* " : "";
            printCell(tile.host != nullptr ? mark + std::string(tile.host->hostname) : "");
        }
        std::puts("|");
        for (int column = 0; column < columns; ++column) {
            const WindowEntity* window = tileAt(column, row).window;
            printCell(window != nullptr ? std::to_string(window->location[2]) + " x " +
                                              std::to_string(window->location[3])
                                        : "");
        }
        std::puts("|");
    }
    printRule(columns);
}

void printHost(const ClusterNode& host)
{
    std::printf("%s%s\n", host.hostname, isThisHost(host) ? " (this host)" : "");
    for (const WindowEntity* window : host.wList) {
        const int* at = window->location;
        std::printf("  window on tile %d %d, location %d %d %d %d\n", window->mapping[0],
                    window->mapping[1], at[0], at[1], at[2], at[3]);
        for (const CameraEntity* camera : window->cList) {
            const float* r = camera->rectangle;
            std::printf("    camera: rectangle %g %g %g %g, offset %g %g\n", r[0], r[1], r[2], r[3],
                        camera->offset[0], camera->offset[1]);
        }
    }
}

void printConfiguration()
{
    const Cluster* wall = config.cluster;
    if (wall == nullptr) {
        return;
    }
    std::printf("\nA wall of %d x %d tiles, mullions %g and %g, hosts: %zu\n\n", wall->tilemap[0],
                wall->tilemap[1], wall->mullions[0], wall->mullions[1], wall->nList.size());
    printWall();
    std::puts("");
    for (const ClusterNode* host : wall->nList) {
        printHost(*host);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr const char* USAGE = "usage: tiles FILE\n"
                                  "Shows the tiled display wall that FILE describes.\n";
    if (const auto status = answerUsage(argc, argv, {1}, USAGE)) {
        return *status;
    }
    // readDisplayCfg ends the process when the file does not list this host. This program prints
    // the wall in any case, so it does that at exit.
    //! [read]
    std::atexit(printConfiguration);
    if (config.readDisplayCfg(argv[1]) == -1) {
        std::fprintf(stderr, "tiles: %s is no tile configuration, or breaks off\n", argv[1]);
        return 1;
    }
    //! [read]
    return 0;
}
