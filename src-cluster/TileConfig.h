#pragma once

#include <vector>

/// The description of a tiled display wall that a cluster of hosts drives.
///
/// One text file, shared by all hosts, lists the tile grid, the bezels ("mullions") and every
/// host's windows with their cameras. Each host reads it and picks the entry that has its own host
/// name. This is the grammar. Words in quotes are literal and case matters; any white space
/// separates words:
///
///     "Cluster"
///     "TileMap" int int
///     "Mullions" float float
///     "Nodes" count, then per host:
///         "Node"
///         "Hostname" word
///         "Windows" count, then per window:
///             "Map" int int
///             "Location" int int int int
///             "Cameras" count, then per camera:
///                 "Rectangle" float float float float
///                 "Offset" float float
///
/// All numbers are kept as written; their units are up to the user of the class. A word that is not
/// a number leaves its field at 0; a count of 0 or less means none.
///
/// Fixed behavior: the records of a wall are never freed, those of an earlier or a failed read
/// included. Pointers to them stay valid until the process ends. Pinned by
/// TileConfigTest.RecordsOutliveTheirReader,
/// TileConfigTest.AnotherReadReplacesTheClusterAndKeepsItsRecords; do not correct.

/// One camera of a window.
struct CameraEntity {
    float rectangle[4] = {}; ///< its viewport, from "Rectangle"
    float offset[2] = {};    ///< from "Offset"
};

/// One window of a host.
struct WindowEntity {
    std::vector<CameraEntity*> cList; ///< its cameras, in file order
    int location[4] = {};             ///< its placement, from "Location"
    int mapping[2] = {};              ///< its position in the tile grid, from "Map"
};

/// One host.
struct ClusterNode {
    char hostname[32] = {};           ///< as written, cut to 31 characters, terminated
    std::vector<WindowEntity*> wList; ///< its windows, in file order
};

/// The whole wall.
struct Cluster {
    std::vector<ClusterNode*> nList; ///< the hosts, in file order
    float mullions[2] = {};          ///< bezel sizes
    int tilemap[2] = {};             ///< size of the tile grid
};

/// Reads such a file and finds the entry of the host that it runs on.
///
/// \par Example
/// \snippet tiles.cpp read
class TileConfig {
public:
    Cluster* cluster = nullptr;      ///< borrows: the wall that was read last; null before
    ClusterNode* thisNode = nullptr; ///< borrows: this host's entry in it, set by cfgNode

    /// Parses the file at \p path into a new cluster and calls cfgNode.
    /// \return 0 after a complete parse; -1, without a message, after a failure. thisNode is then
    ///         unchanged. If the file cannot be opened (a pipe or a device cannot) or does not
    ///         start with "Cluster", cluster is unchanged too; if a later keyword is wrong or the
    ///         file ends too early, cluster has the hosts that were complete
    int readDisplayCfg(const char* path);

    /// Prints this machine's host name, cut to 31 characters, and sets thisNode to the first host
    /// of the cluster with exactly this name.
    ///
    /// Fixed behavior: a host that is not in the wall prints "No information for this node!" and
    /// ends the process with status 0, as does any host without a cluster. Pinned by
    /// TileConfigDeathTest.AWallWithoutThisHostEndsTheProcess,
    /// TileConfigDeathTest.WithoutAClusterNoHostIsFound; do not correct.
    void cfgNode();

    /// \return thisNode, a pointer into the cluster
    ClusterNode* getThisNodeCfg() { return thisNode; }
};
