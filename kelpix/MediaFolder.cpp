#include "MediaFolder.h"

#include <cstdio>
#include <filesystem>

namespace MediaFolder {

std::vector<std::string> missingFiles()
{
    std::vector<std::string> missing;
    for (const char* name :
         {"sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg", "data/mocap.txt",
          "fonts/ChalkboardBold.ttf", "data/underwater.jpg", "data/fish0.png", "data/bubble.png"}) {
        std::error_code error;
        if (!std::filesystem::is_regular_file(name, error)) {
            missing.emplace_back(name);
        }
    }
    return missing;
}

void reportMissingFiles()
{
    const std::vector<std::string> missing = missingFiles();
    if (missing.empty()) {
        return;
    }
    std::fprintf(stderr, "kelpix: missing in this folder:\n");
    for (const std::string& name : missing) {
        std::fprintf(stderr, "  %s\n", name.c_str());
    }
    std::fprintf(stderr, "Start kelpix in a folder that holds data/, sound/ and fonts/. "
                         "\"kelpix-media --out DIR\" makes one.\n");
}

} // namespace MediaFolder
