/// The input is a tile configuration. This host is called "tile". What the strict reader takes, the
/// other one has to read to the same values.

#include "Harness.h"
#include "TileDescription.h"

// The source, not only its header: records live until the process ends, so each input has to delete
// its own.
#include "TileConfig.cpp" // NOLINT(bugprone-suspicious-include)

extern "C" int __wrap_gethostname(char* name, std::size_t size)
{
    std::snprintf(name, size, "tile");
    return 0;
}

namespace {

bool isSame(const WindowEntity& one, const WindowEntity& other)
{
    return std::ranges::equal(one.location, other.location) &&
           std::ranges::equal(one.mapping, other.mapping) &&
           std::ranges::equal(one.cList, other.cList,
                              [](const CameraEntity* a, const CameraEntity* b) {
                                  return std::ranges::equal(a->rectangle, b->rectangle) &&
                                         std::ranges::equal(a->offset, b->offset);
                              });
}

bool isSame(const Cluster& one, const Cluster& other)
{
    return std::ranges::equal(one.tilemap, other.tilemap) &&
           std::ranges::equal(one.mullions, other.mullions) &&
           std::ranges::equal(
               one.nList, other.nList, [](const ClusterNode* a, const ClusterNode* b) {
                   return std::strcmp(a->hostname, b->hostname) == 0 &&
                          std::ranges::equal(a->wList, b->wList,
                                             [](const WindowEntity* c, const WindowEntity* d) {
                                                 return isSame(*c, *d);
                                             });
               });
}

} // namespace

void fuzz::test(std::string_view input)
{
    TileDescription description;
    const auto problem = call([&] { return description.parse(input, "tiles.txt"); });
    if (problem) {
        const auto lines = 1 + std::count(input.begin(), input.end(), '\n');
        expect(!problem->what.empty() && problem->line >= 1 && problem->line <= lines,
               "a problem has a text and a line of the file");
    }

    const std::string path = place("tiles.txt", input);
    TileConfig config;
    int result = 0;
    const bool ended = ends({{0, "No information for this node!\n"}},
                            [&] { result = config.readDisplayCfg(path.c_str()); });
    expect(ended || result == -1 || result == 0, "the result is 0 or -1");
    if (!ended && result == 0) {
        expect(std::strcmp(config.getThisNodeCfg()->hostname, "tile") == 0, "this host is found");
    }
    if (!problem && !memory::isScarce()) {
        expect(ended || result == 0, "both readers take the file");
        expect(config.cluster != nullptr && isSame(description.cluster, *config.cluster),
               "both read the same");
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
