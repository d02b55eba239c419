#pragma once

#include <filesystem>
#include <string>

namespace Files {

/// \return the name that a file has while it is a PartFile
std::filesystem::path partName(const std::filesystem::path& path);

/// A file that is being written, under its name with ".part" before the extension. It is renamed
/// when it is complete, so a file under its final name is always whole.
class PartFile {
public:
    /// Makes the empty file, in place of one that an earlier run left. Throws std::runtime_error,
    /// with a line for the user, when it cannot be made, or cannot be renamed later (a directory
    /// has that name).
    /// \param path  the final name
    explicit PartFile(const std::filesystem::path& path);
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// Calls discard.
    ~PartFile();

    /// Throws std::runtime_error with a line for the user: which file, and why it was not written.
    [[noreturn]] void fail(const std::string& reason) const;

    /// The temporary name.
    const std::filesystem::path& name() const { return part; }

    /// Renames it to its final name, replacing a file of that name. Throws std::runtime_error when
    /// that fails.
    void keep();

    /// Removes it, unless it was kept.
    void discard();

private:
    std::filesystem::path final;
    std::filesystem::path part;
    bool open = true;
};

/// Writes a whole file, and makes the folders above it. It is a PartFile until it is complete.
/// Throws std::runtime_error, with a line for the user, when a folder or the file cannot be made or
/// written. A file that has its name then stays as it was, and nothing else is left.
void writeWhole(const std::filesystem::path& path, const std::string& bytes);

} // namespace Files
