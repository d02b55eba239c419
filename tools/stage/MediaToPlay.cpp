#include "MediaToPlay.h"

namespace fs = std::filesystem;

fs::path fromProgram(const fs::path& path)
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / path).lexically_normal();
}

fs::path mediaToPlay(const fs::path& named, const fs::path& installed)
{
    if (!named.empty()) {
        return named;
    }
    std::error_code error;
    if (fs::exists("data/mocap.txt", error)) {
        return ".";
    }
    return fromProgram(installed);
}
