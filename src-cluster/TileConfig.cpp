#include "TileConfig.h"

#include "OpenFile.h"
#include "TextWords.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>
#include <unistd.h>

namespace {

/// All records that were ever read. A deque does not move its elements when it grows: pointers to
/// them stay valid.
struct Records {
    std::deque<Cluster> clusters;
    std::deque<ClusterNode> nodes;
    std::deque<WindowEntity> windows;
    std::deque<CameraEntity> cameras;
};

Records& records()
{
    static auto* const all = new Records;
    return *all;
}

bool readKeyword(std::FILE* file, const char* keyword)
{
    char word[32];
    return Files::readWord(file, word) && std::strcmp(word, keyword) == 0;
}

bool readNumber(std::FILE* file, int& value)
{
    return std::fscanf(file, "%d", &value) == 1;
}

bool readNumber(std::FILE* file, float& value)
{
    return std::fscanf(file, "%f", &value) == 1;
}

/// Reads a keyword and the numbers after it. A word that is not a number changes no value.
/// \return false when the keyword is wrong or the file ends too early, as in all functions below
template<typename Number, std::size_t COUNT>
bool readField(std::FILE* file, const char* keyword, Number (&values)[COUNT])
{
    if (!readKeyword(file, keyword)) {
        return false;
    }
    for (Number& value : values) {
        if (!readNumber(file, value)) {
            return std::feof(file) == 0;
        }
    }
    return true;
}

bool readCamera(std::FILE* file, CameraEntity& camera)
{
    return readField(file, "Rectangle", camera.rectangle) &&
           readField(file, "Offset", camera.offset);
}

bool readWindow(std::FILE* file, WindowEntity& window)
{
    int count[1] = {};
    if (!readField(file, "Map", window.mapping) || !readField(file, "Location", window.location) ||
        !readField(file, "Cameras", count)) {
        return false;
    }
    for (int i = 0; i < count[0]; ++i) {
        CameraEntity& camera = records().cameras.emplace_back();
        if (!readCamera(file, camera)) {
            return false;
        }
        window.cList.push_back(&camera);
    }
    return true;
}

bool readNode(std::FILE* file, ClusterNode& node)
{
    int count[1] = {};
    if (!readKeyword(file, "Node") || !readKeyword(file, "Hostname") ||
        !Files::readWord(file, node.hostname) || !readField(file, "Windows", count)) {
        return false;
    }
    for (int i = 0; i < count[0]; ++i) {
        WindowEntity& window = records().windows.emplace_back();
        if (!readWindow(file, window)) {
            return false;
        }
        node.wList.push_back(&window);
    }
    return true;
}

/// Reads all that follows the word "Cluster".
bool readCluster(std::FILE* file, Cluster& cluster)
{
    int count[1] = {};
    if (!readField(file, "TileMap", cluster.tilemap) ||
        !readField(file, "Mullions", cluster.mullions) || !readField(file, "Nodes", count)) {
        return false;
    }
    for (int i = 0; i < count[0]; ++i) {
        ClusterNode& node = records().nodes.emplace_back();
        if (!readNode(file, node)) {
            return false;
        }
        cluster.nList.push_back(&node);
    }
    return true;
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
        if (readKeyword(file.get(), "Cluster")) {
            cluster = &records().clusters.emplace_back();
            complete = readCluster(file.get(), *cluster);
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
