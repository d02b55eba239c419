#pragma once

#include <cstddef>

namespace record {

/// Writes all bytes to a file, pipe or socket, and waits as long as its reader does. The process
/// must ignore SIGPIPE. \return false when not all of them could be written; errno then says why:
/// EPIPE when nobody reads
///         any more
bool writeAll(int descriptor, const void* data, std::size_t bytes);

} // namespace record
