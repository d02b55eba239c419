#pragma once

#include <filesystem>

namespace show {

/// Sees that something in a folder of media changes, at any depth: a file, its rights, or the whole
/// folder when another one takes its name.
class MediaWatch {
public:
    /// \param folder  an absolute path; may be missing
    /// Throws std::runtime_error, with a line for the user, when the kernel can watch nothing more.
    explicit MediaWatch(std::filesystem::path folder);
    MediaWatch(const MediaWatch&) = delete;
    MediaWatch& operator=(const MediaWatch&) = delete;
    ~MediaWatch();

    /// Becomes readable when something has changed.
    int descriptor() const { return events; }

    /// Takes note of what has changed so far. \return whether anything has
    bool read();

    /// Watches what is there now. To be called when the folder has come to rest: folders may be
    /// new.
    void renew();

private:
    std::filesystem::path folder;
    int events = -1;
    int above = -1; ///< the watch of the folder that holds the folder

    int watch(const std::filesystem::path& path) const;
};

} // namespace show
