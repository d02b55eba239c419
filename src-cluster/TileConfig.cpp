#include "TileConfig.h"

#include "OpenFile.h"
#include "TileReader.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>
#include <unistd.h>

namespace {

/// All records that were ever read.
struct Records : TileRecords {
    std::deque<Cluster> clusters;
};

Records& records()
{
    static auto* const all = new Records;
    return *all;
}

} // namespace

int TileConfig::readDisplayCfg(const char* path)
{
    Files::Handle file = Files::openRegular(path);
    if (file == nullptr) {
        return -1;
    }
    bool complete = false;
    try {
        TileReader reader(file.get(), records());
        if (reader.readStart()) {
            cluster = &records().clusters.emplace_back();
            complete = reader.readCluster(*cluster);
        }
    } catch (const std::bad_alloc&) {
        // A wall that does not fit into memory counts as incomplete.
    }
    file.reset();
    if (!complete) {
        return -1;
    }
    cfgNode();
    return 0;
}

void TileConfig::cfgNode()
{
    thisNode = nullptr;
    char name[32] = {};
    gethostname(name, sizeof name);
    name[sizeof name - 1] = '\0';
    std::printf("This node's hostname: %s\n", name);

    if (cluster != nullptr) {
        for (ClusterNode* node : cluster->nList) {
            if (std::strcmp(node->hostname, name) == 0) {
                thisNode = node;
                break;
            }
        }
    }
    if (thisNode == nullptr) {
        std::printf("No information for this node!\n");
        std::exit(0);
    }
    std::printf("cfg for %s identified!\n", name);
}
