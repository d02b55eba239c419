#pragma once

#include <filesystem>

struct inotify_event;

namespace show {

/// Sees that the media in a folder change, which are in its folders data, sound and fonts, at any
/// depth: a file, its rights, or a whole folder when another one takes its name. What else is in
/// the folder may change unseen, such as a status file.
class MediaWatch {
public:
    /// \param named   an absolute path; may be missing
    /// \param status  an absolute path, or empty: a file that this process itself writes, and that
    ///                is no medium wherever it is
    /// Throws std::runtime_error, with a line for the user, when the kernel can watch nothing more.
    explicit MediaWatch(std::filesystem::path named, std::filesystem::path status = {});
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

    /// Whether the kernel watches all that is to be watched. It limits how much; what is beyond
    /// that may change unseen.
    bool isWhole() const { return whole; }

private:
    std::filesystem::path folder;
    std::filesystem::path own; ///< the status file
    int events = -1;
    int above = -1; ///< the watch of the folder that holds the folder
    int top = -1;   ///< the watch of the folder itself
    int owns = -1;  ///< the watch of the folder that the status file is in; -1 = it is elsewhere
    bool whole = true;

    int watch(const std::filesystem::path& path);
    bool isOfMedia(const inotify_event& event) const;
};

} // namespace show
