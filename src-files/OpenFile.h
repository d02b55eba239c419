#pragma once

#include <cstdio>
#include <memory>

/// Opens files whose paths come from users or from other files: such a path may name a pipe or
/// a device.
namespace Files {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file, closed with its owner. A caller that has to know whether everything was written
/// closes it itself: std::fclose(handle.release()).
using Handle = std::unique_ptr<std::FILE, Close>;

/// Opens a regular file for reading. The kind is taken from the open file (fstat), so the file
/// cannot be exchanged between check and use.
/// \return null for a null path, for a file that cannot be opened, and for everything that is not a
///         regular file: a pipe or a device could keep its reader waiting, a directory has no bytes
Handle openRegular(const char* path);

/// As openRegular, but a directory can be opened, as std::fopen opens one: the first read fails.
Handle openRegularOrFolder(const char* path);

/// Opens a file for writing, and makes it or empties it.
/// \return null for a null path, for a file that cannot be opened, and for a pipe, which could keep
///         its writer waiting; errno then says why, ENXIO for a pipe
Handle create(const char* path);

} // namespace Files
