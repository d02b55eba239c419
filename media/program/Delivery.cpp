#include "Delivery.h"

#include "OpenFile.h"
#include "PartFile.h"
#include "Printable.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace media {

namespace {

enum class Place { free, same, taken };

/// Whether the file under this name has these bytes. What cannot be read has others.
bool holds(const std::filesystem::path& path, std::string_view bytes)
{
    const Files::Handle file = Files::openRegular(path.c_str());
    if (!file) {
        return false;
    }
    std::array<char, 65536> block{};
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), file.get());
        if (!bytes.starts_with(std::string_view(block.data(), count))) {
            return false;
        }
        bytes.remove_prefix(count);
        if (count < block.size()) {
            return bytes.empty() && std::ferror(file.get()) == 0;
        }
    }
}

/// What is under the name of a file. A folder counts as free: writing says that it is in the way.
Place placeOf(const File& file, const std::filesystem::path& folder)
{
    const std::filesystem::path path = folder / file.name;
    std::error_code error;
    // Not that of a link's goal: a link that leads nowhere is somebody's, too.
    const auto status = std::filesystem::symlink_status(path, error);
    if (!exists(status) || std::filesystem::is_directory(path, error)) {
        return Place::free;
    }
    return holds(path, file.bytes) ? Place::same : Place::taken;
}

} // namespace

void deliver(const std::vector<File>& files, const std::filesystem::path& folder, bool force)
{
    std::vector<Place> places(files.size(), Place::free);
    std::string taken;
    for (std::size_t i = 0; i < files.size() && !force; ++i) {
        places[i] = placeOf(files[i], folder);
        taken += places[i] == Place::taken ? " " + files[i].name : "";
    }
    if (!taken.empty()) {
        throw std::runtime_error("nothing is written: --force would replace in " + folder.string() +
                                 ":" + taken);
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (places[i] != Place::same) {
            Files::writeWhole(folder / files[i].name, files[i].bytes);
        }
        std::printf("%s: %s\n", files[i].name.c_str(), Files::printable(files[i].summary).c_str());
        std::fflush(stdout);
    }
}

} // namespace media
