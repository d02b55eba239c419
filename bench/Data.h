#pragma once

#include <string>

/// Files that the benchmarks make for themselves, from fixed seeds, in the build folder.
namespace bench {

/// The path of the file of this name.
std::string dataFile(const std::string& name);

/// Writes a file there. \return its path
std::string writeData(const std::string& name, const std::string& bytes);

/// The bytes of a file.
std::string readFile(const std::string& path);

} // namespace bench
