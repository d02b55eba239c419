#include "MediaHash.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace wall {

namespace {

namespace fs = std::filesystem;

/// FNV-1a.
void add(std::uint64_t& hash, std::string_view bytes)
{
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
}

void addFile(std::uint64_t& hash, const std::string& name)
{
    add(hash,
        {name.c_str(), name.size() + 1}); // with its end, so that names and contents stay apart
    std::ifstream file(name, std::ios::binary);
    std::uint64_t length = 0;
    std::vector<char> piece(1 << 16);
    do {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        add(hash, {piece.data(), static_cast<std::size_t>(file.gcount())});
        length += static_cast<std::uint64_t>(file.gcount());
    } while (file);
    add(hash, std::to_string(length) + "\n");
}

} // namespace

std::uint64_t hashOfMedia()
{
    std::vector<std::string> names;
    for (const char* folder : {"data", "sound", "fonts"}) {
        std::error_code error;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder, error)) {
            if (entry.is_regular_file(error)) {
                names.push_back(entry.path().string());
            }
        }
    }
    std::sort(names.begin(), names.end());
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const std::string& name : names) {
        addFile(hash, name);
    }
    return hash;
}

} // namespace wall
