#pragma once

#include <vector>

/// The description of a tiled display wall that a cluster of hosts drives.
///
/// One text file, shared by all hosts, lists the tile grid, the bezels ("mullions") and every
/// host's windows with their cameras. Each host reads it and picks the entry that has its own host
/// name. The grammar, with words in quotes as they stand (case matters) and any white space
/// between words:
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
/// Units are the user's: all numbers are kept as written, and nothing here interprets them. A
/// word that is no number leaves its field at 0; a count of 0 or less means none.
///
/// The records live until the process ends, those of an earlier or failed read too, so that
/// pointers to them hold for good.

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
class TileConfig {
public:
    Cluster* cluster = nullptr;      ///< borrows: what the last file gave; null before
    ClusterNode* thisNode = nullptr; ///< borrows: this host's entry in it, as cfgNode found it

    /// Parses the file at \p path into a new cluster and calls cfgNode.
    /// \return 0 after a complete parse; -1, without a message and with thisNode as it was, when
    ///         the file cannot be opened or does not start with "Cluster" (cluster then stays as it
    ///         was), or when a later keyword is wrong or the file ends too early (cluster then has
    ///         the hosts that were complete by then). A pipe or a device counts as a file that
    ///         cannot be opened.
    int readDisplayCfg(const char* path);

    /// Prints this machine's host name, cut to 31 characters, and points thisNode at the first host
    /// of the cluster that has exactly this name. Without one (also without a cluster) prints "No
    /// information for this node!" and ends the process with status 0.
    void cfgNode();

    /// \return a pointer into the cluster: thisNode
    ClusterNode* getThisNodeCfg() { return thisNode; }
};
