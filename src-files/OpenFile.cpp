#include "OpenFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The descriptor's kind of file: one of the S_IF constants; 0 when it cannot be told.
mode_t kindOf(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? status.st_mode & S_IFMT : 0;
}

/// Makes a stream of a descriptor, or closes it.
Files::Handle toStream(int descriptor, bool isAccepted, const char* mode)
{
    std::FILE* const file = isAccepted ? fdopen(descriptor, mode) : nullptr;
    if (file == nullptr) {
        close(descriptor);
    }
    return Files::Handle(file);
}

/// Opens for reading without waiting for the other end of a pipe. For a regular file O_NONBLOCK
/// changes nothing.
/// \return -1 when it cannot be opened
int openToRead(const char* path)
{
    return path == nullptr ? -1 : open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

namespace Files {

Handle openRegular(const char* path)
{
    const int descriptor = openToRead(path);
    return descriptor < 0 ? nullptr : toStream(descriptor, kindOf(descriptor) == S_IFREG, "r");
}

Handle openRegularOrFolder(const char* path)
{
    const int descriptor = openToRead(path);
    if (descriptor < 0) {
        return nullptr;
    }
    const mode_t kind = kindOf(descriptor);
    return toStream(descriptor, kind == S_IFREG || kind == S_IFDIR, "r");
}

Handle create(const char* path)
{
    if (path == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    constexpr mode_t ALLOWED = 0666; // less the process's umask, as for std::fopen
    const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = open(path, flags, ALLOWED);
    if (descriptor < 0) {
        return nullptr;
    }
    const bool isPipe = kindOf(descriptor) == S_IFIFO;
    // Back to blocking writes.
    Handle file = toStream(descriptor, !isPipe && fcntl(descriptor, F_SETFL, 0) == 0, "w");
    if (isPipe) {
        errno = ENXIO; // as without a reader
    }
    return file;
}

} // namespace Files
