#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

/// A new, empty working directory for the life of this object: files in it go by their bare names.
class TempDirectory {
public:
    TempDirectory() : before(std::filesystem::current_path())
    {
        std::string name = testing::TempDir() + "kelpix-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        directory = name;
        std::filesystem::current_path(directory);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;
    ~TempDirectory()
    {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(directory);
    }

    static void write(const std::string& name, const std::string& bytes)
    {
        std::ofstream file(name, std::ios::binary);
        file << bytes;
        file.close();
        ASSERT_TRUE(file) << name;
    }

private:
    std::filesystem::path before;
    std::filesystem::path directory;
};
