#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

/// The least that decoding a file costs: the library alone, each byte written once. Nothing is
/// checked: the files are known to be whole.
namespace bench {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

using Pixels = std::unique_ptr<unsigned char[]>;

/// Rows straight into place, the bottom one first.
Pixels decodeJpeg(const std::string& path);
Pixels decodePng(const std::string& path);

/// A track of two channels at most, 16 bits a sample, into a buffer that has the room.
std::vector<char> decodeOgg(const std::string& path);

/// All numbers of a text; other words are skipped.
std::vector<float> decodeNumbers(const std::string& path);

} // namespace bench
