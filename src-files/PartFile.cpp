#include "PartFile.h"

#include "OpenFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace Files {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& reason)
{
    throw std::runtime_error("cannot write " + path.string() + ": " + reason);
}

/// The text of errno.
std::string latestReason()
{
    return errno != 0 ? std::strerror(errno) : "not a file";
}

} // namespace

std::filesystem::path partName(const std::filesystem::path& path)
{
    std::filesystem::path part = path;
    return part.replace_filename(path.stem().string() + ".part" + path.extension().string());
}

PartFile::PartFile(const std::filesystem::path& path) : final(path), part(partName(path))
{
    std::error_code error;
    if (std::filesystem::is_directory(final, error)) {
        fail(std::strerror(EISDIR));
    }
    errno = 0;
    if (!create(part.c_str())) {
        fail(latestReason());
    }
}

PartFile::~PartFile()
{
    discard();
}

void PartFile::fail(const std::string& reason) const
{
    refuse(final, reason);
}

void PartFile::keep()
{
    std::error_code error;
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

void writeWhole(const std::filesystem::path& path, const std::string& bytes)
{
    std::error_code error;
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path(), error);
    }
    if (error) {
        refuse(path, error.message());
    }
    PartFile part(path);
    errno = 0;
    Handle file = create(part.name().c_str());
    if (!file || std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
        std::fclose(file.release()) != 0) {
        part.fail(latestReason());
    }
    part.keep();
}

} // namespace Files
