#include "Data.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace bench {

std::string dataFile(const std::string& name)
{
    return std::string(KELPIX_BENCH_DATA) + '/' + name;
}

std::string writeData(const std::string& name, const std::string& bytes)
{
    std::filesystem::create_directories(KELPIX_BENCH_DATA);
    std::string path = dataFile(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace bench
