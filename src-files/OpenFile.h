#pragma once

#include <cstdio>
#include <memory>

/// Opening files that come from outside: a path may name anything, also something that never ends
/// or that nobody writes to.
namespace Files {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file, closed with its owner. A caller that has to know whether everything was written
/// closes it itself: std::fclose(handle.release()).
using Handle = std::unique_ptr<std::FILE, Close>;

/// Opens a regular file for reading. The kind of file is asked of the open file, not of the path,
/// so that nothing can be put in its place in between.
/// \return null for a null path, for a file that cannot be opened, and for everything that is not a
///         regular file: a pipe or a device could keep its reader waiting, a directory has no bytes
Handle openRegular(const char* path);

/// As openRegular, but a directory can be opened, as std::fopen opens one: the first read fails.
Handle openRegularOrFolder(const char* path);

/// Opens a file for writing, and makes it or empties it.
/// \return null for a null path, for a file that cannot be opened, and for a pipe, which could keep
///         its writer waiting
Handle create(const char* path);

} // namespace Files
