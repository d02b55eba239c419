#include "OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace media {

namespace {

[[noreturn]] void fail(const std::filesystem::path& path, const std::string& reason)
{
    throw std::runtime_error("cannot write " + path.string() + ": " + reason);
}

} // namespace

void writeFile(const std::filesystem::path& path, const std::string& bytes)
{
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) {
        fail(path, error.message());
    }
    std::filesystem::path part = path;
    part += ".part";
    std::FILE* file = std::fopen(part.c_str(), "wb");
    if (file == nullptr) {
        fail(path, std::strerror(errno));
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed) {
        const std::string reason = std::strerror(errno);
        std::filesystem::remove(part, error);
        fail(path, reason);
    }
    std::filesystem::rename(part, path, error);
    if (error) {
        const std::string reason = error.message();
        std::filesystem::remove(part, error);
        fail(path, reason);
    }
}

} // namespace media
