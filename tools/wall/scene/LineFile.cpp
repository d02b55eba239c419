#include "LineFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace wall {

LineFile::LineFile(const std::filesystem::path& path) : file(Files::create(path.c_str()))
{
    if (file == nullptr) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
}

bool LineFile::add(const std::string& line)
{
    return std::fwrite(line.data(), 1, line.size(), file.get()) == line.size() &&
           std::fflush(file.get()) == 0;
}

} // namespace wall
