#pragma once

#include <filesystem>
#include <string>

namespace record {

/// A file in the making. It grows beside its place, with ".part" before its extension, and gets its
/// name when it is complete: a file that is there under its name is always whole.
class PartFile {
public:
    /// Makes the empty file, in place of one that an earlier run left. Throws std::runtime_error,
    /// with a line for the user, when it cannot be made, or could not get its name.
    /// \param path  the name it shall have in the end
    explicit PartFile(const std::filesystem::path& path);
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// Calls discard.
    ~PartFile();

    /// Throws std::runtime_error with a line for the user: which file, and why it was not written.
    [[noreturn]] void fail(const std::string& reason) const;

    /// The name while it grows.
    const std::filesystem::path& name() const { return part; }

    /// Gives it its name, in place of a file that has it. Throws std::runtime_error when that fails
    /// or the file is empty.
    void keep();

    /// Removes it, unless it was kept.
    void discard();

private:
    std::filesystem::path final;
    std::filesystem::path part;
    bool open = true;
};

} // namespace record
