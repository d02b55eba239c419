#include "MediaToPlay.h"

#include <stdexcept>
#include <system_error>

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

void enterFolder(const fs::path& folder, std::initializer_list<fs::path*> files)
{
    for (fs::path* file : files) {
        if (!file->empty()) {
            *file = fs::absolute(*file);
        }
    }
    std::error_code error;
    fs::current_path(folder, error);
    if (error) {
        throw std::runtime_error("no media in " + folder.string() + ": " + error.message() +
                                 "; \"kelpix-media --out DIR\" makes some, --media DIR plays them");
    }
}
