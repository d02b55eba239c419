/// The input is a tile configuration. This host is called "tile".

#include "Harness.h"

// The source, not only its header: records live until the process ends, so each input has to delete
// its own.
#include "TileConfig.cpp" // NOLINT(bugprone-suspicious-include)

extern "C" int __wrap_gethostname(char* name, std::size_t size)
{
    std::snprintf(name, size, "tile");
    return 0;
}

void fuzz::test(std::string_view input)
{
    const std::string path = place("tiles.txt", input);
    TileConfig config;
    int result = 0;
    const bool ended = ends({{0, "No information for this node!\n"}},
                            [&] { result = config.readDisplayCfg(path.c_str()); });
    expect(ended || result == -1 || result == 0, "the result is 0 or -1");
    if (!ended && result == 0) {
        expect(std::strcmp(config.getThisNodeCfg()->hostname, "tile") == 0, "this host is found");
    }
    if (config.cluster != nullptr) {
        for (const ClusterNode* node : config.cluster->nList) {
            expect(std::memchr(node->hostname, '\0', sizeof node->hostname) != nullptr,
                   "the name has an end");
            for (const WindowEntity* window : node->wList) {
                for (const CameraEntity* camera : window->cList) {
                    expect(camera != nullptr, "the camera is there");
                }
            }
        }
    }
    records() = {};
}
