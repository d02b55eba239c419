#pragma once

#include "WallLayout.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

/// A window of a description.
struct WindowText {
    std::string map;                   ///< "COLUMN ROW"
    std::string location;              ///< "X Y W H"
    std::string cameras = "Cameras 0"; ///< and what follows
};

/// A host of a description.
struct HostText {
    std::string name;
    std::vector<WindowText> windows;
};

/// \param grid  "COLUMNS ROWS"; \param mullions  "X Y"
inline std::string describe(const std::string& grid, const std::string& mullions,
                            const std::vector<HostText>& hosts)
{
    std::string text = "Cluster\nTileMap " + grid + "\nMullions " + mullions + "\nNodes " +
                       std::to_string(hosts.size()) + "\n";
    for (const HostText& host : hosts) {
        text += "Node\nHostname " + host.name + "\nWindows " + std::to_string(host.windows.size()) +
                "\n";
        for (const WindowText& window : host.windows) {
            text += "Map " + window.map + "\nLocation " + window.location + "\n" + window.cameras +
                    "\n";
        }
    }
    return text;
}

/// A grid of equal tiles, a host "h0", "h1" ... for each column, its windows from the top down.
inline std::string describeGrid(int columns, int rows, int width, int height,
                                const std::string& mullions)
{
    std::vector<HostText> hosts;
    for (int column = 0; column < columns; ++column) {
        HostText& host = hosts.emplace_back(HostText{"h" + std::to_string(column), {}});
        for (int row = 0; row < rows; ++row) {
            host.windows.push_back({std::to_string(column) + " " + std::to_string(row),
                                    "0 " + std::to_string(row * height) + " " +
                                        std::to_string(width) + " " + std::to_string(height)});
        }
    }
    return describe(std::to_string(columns) + " " + std::to_string(rows), mullions, hosts);
}

inline WallFiles filesOf(const std::string& description, const std::string& more = "")
{
    return {"reef.cfg", description, !more.empty(), more};
}

/// The layout of a wall that is right.
inline WallLayout layoutOf(const std::string& description, const std::string& more = "")
{
    WallLayout layout;
    const auto problem = layOut(filesOf(description, more), layout);
    EXPECT_FALSE(problem) << problem->text();
    return layout;
}

/// What is said about a wall; "" = nothing.
inline std::string problemOf(const std::string& description, const std::string& more = "")
{
    WallLayout layout;
    const auto problem = layOut(filesOf(description, more), layout);
    return problem ? problem->text() : "";
}

inline void PrintTo(const PixelRect& rect, std::ostream* out)
{
    *out << "{" << rect.x << ", " << rect.y << ", " << rect.w << ", " << rect.h << "}";
}

inline void PrintTo(const Blend& blend, std::ostream* out)
{
    *out << "{" << blend.left << ", " << blend.right << ", " << blend.bottom << ", " << blend.top
         << ", " << blend.gamma << "}";
}
