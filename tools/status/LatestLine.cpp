#include "LatestLine.h"

#include "PartFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace status {

namespace fs = std::filesystem;

LatestLine::~LatestLine()
{
    if (stream != -1) {
        close(stream);
    }
}

/// Opens it if it does. Throws when it is neither a file nor such a stream.
bool LatestLine::getsEachLine()
{
    const auto refuse = [&](const char* reason) {
        throw std::runtime_error("cannot write " + path.string() + ": " + reason);
    };
    if (stream != -1) {
        return true;
    }
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path, error).type();
    if (type == fs::file_type::fifo || type == fs::file_type::socket ||
        type == fs::file_type::block) {
        refuse("not a file");
    }
    if (type != fs::file_type::symlink && type != fs::file_type::character) {
        return false;
    }
    // Not to wait for a terminal that takes nothing.
    stream = open(path.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (stream == -1) {
        refuse(std::strerror(errno));
    }
    return true;
}

void LatestLine::check()
{
    if (!getsEachLine()) {
        std::error_code error; // what is then missing is said below
        fs::create_directories(path.parent_path(), error);
        const Files::PartFile trial(path);
    }
}

void LatestLine::write(const std::string& line)
{
    const std::string text = line + "\n";
    if (!getsEachLine()) {
        Files::writeWhole(path, text);
    } else if (::write(stream, text.data(), text.size()) == -1 && errno != EAGAIN) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
}

} // namespace status
