#include "PartFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace record {

PartFile::PartFile(const std::filesystem::path& path) : final(path), part(path)
{
    part.replace_filename(path.stem().string() + ".part" + path.extension().string());
    std::error_code error;
    if (std::filesystem::is_directory(final, error)) {
        fail(std::strerror(EISDIR));
    }
    std::FILE* const file = std::fopen(part.c_str(), "wb");
    if (file == nullptr) {
        fail(std::strerror(errno));
    }
    std::fclose(file);
}

PartFile::~PartFile()
{
    discard();
}

void PartFile::fail(const std::string& reason) const
{
    throw std::runtime_error("cannot write " + final.string() + ": " + reason);
}

void PartFile::keep()
{
    std::error_code error;
    if (std::filesystem::file_size(part, error) == 0 || error) {
        fail("nothing was written");
    }
    std::filesystem::rename(part, final, error);
    if (error) {
        fail(error.message());
    }
    open = false;
}

void PartFile::discard()
{
    if (open) {
        std::error_code error;
        std::filesystem::remove(part, error);
        open = false;
    }
}

} // namespace record
