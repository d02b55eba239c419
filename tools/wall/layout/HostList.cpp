#include "HostList.h"

#include "WallLayout.h"

namespace hosts {

std::string sequence(const WallLayout& layout)
{
    std::string text;
    for (const WallTile& tile : layout.tiles) {
        text += tile.host + "\n";
    }
    return text;
}

} // namespace hosts
