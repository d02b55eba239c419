#include "WallFiles.h"

#include "OpenFile.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

constexpr std::size_t MOST_BYTES = std::size_t{1} << 20;

std::optional<TileProblem> readFile(const std::string& name, std::string& bytes)
{
    bytes.clear();
    errno = 0;
    const Files::Handle file = Files::openRegular(name.c_str());
    if (file == nullptr) {
        const std::string reason = errno != 0 ? std::strerror(errno) : "no regular file";
        return TileProblem{name, 0, "cannot be opened: " + reason};
    }
    std::array<char, 4096> block{};
    std::size_t count = 0;
    while ((count = std::fread(block.data(), 1, block.size(), file.get())) > 0) {
        bytes.append(block.data(), count);
        if (bytes.size() > MOST_BYTES) {
            return TileProblem{name, 0, "is longer than 1 MiB"};
        }
    }
    if (std::ferror(file.get()) != 0) {
        return TileProblem{name, 0, "cannot be read to its end"};
    }
    return {};
}

} // namespace

std::optional<TileProblem> readWallFiles(const std::string& name, WallFiles& files)
{
    files = WallFiles();
    files.name = name;
    if (auto problem = readFile(name, files.description)) {
        return problem;
    }
    std::error_code unknown;
    const std::string more = files.nameOfMore();
    files.hasMore = std::filesystem::symlink_status(more, unknown).type() !=
                    std::filesystem::file_type::not_found;
    return files.hasMore ? readFile(more, files.more) : std::nullopt;
}
