#include "HostList.h"

#include "WallLayout.h"

#include <utility>
#include <vector>

namespace hosts {

namespace {

/// The hosts and how many windows each has. Those of one host stand beside each other.
std::vector<std::pair<std::string, int>> windowsOf(const WallLayout& layout)
{
    std::vector<std::pair<std::string, int>> result;
    for (const WallTile& tile : layout.tiles) {
        if (result.empty() || result.back().first != tile.host) {
            result.emplace_back(tile.host, 0);
        }
        ++result.back().second;
    }
    return result;
}

} // namespace

std::string option(const WallLayout& layout)
{
    std::string text;
    for (const auto& [host, windows] : windowsOf(layout)) {
        text += (text.empty() ? "" : ",") + host + ":" + std::to_string(windows);
    }
    return text;
}

std::string file(const WallLayout& layout)
{
    std::string text;
    for (const auto& [host, windows] : windowsOf(layout)) {
        text += host + " slots=" + std::to_string(windows) + "\n";
    }
    return text;
}

std::string sequence(const WallLayout& layout)
{
    std::string text;
    for (const WallTile& tile : layout.tiles) {
        text += tile.host + "\n";
    }
    return text;
}

} // namespace hosts
