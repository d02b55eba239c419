#include "MediaWatch.h"

#include "PartFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits.h>
#include <stdexcept>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace show {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 3> PARTS = {"data", "sound", "fonts"};

} // namespace

// "reef/" is "reef": the folder above knows it by that name.
MediaWatch::MediaWatch(fs::path named, fs::path status)
    : folder(named.has_filename() ? std::move(named) : named.parent_path()), own(std::move(status))
{
    renew();
    if (events == -1) {
        throw std::runtime_error(std::string("cannot watch the media: ") + std::strerror(errno));
    }
}

MediaWatch::~MediaWatch()
{
    close(events);
}

int MediaWatch::watch(const fs::path& path)
{
    const int number = inotify_add_watch(events, path.c_str(),
                                         IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_MOVED_FROM |
                                             IN_MOVED_TO | IN_CREATE | IN_DELETE | IN_ONLYDIR);
    whole = whole && (number != -1 || errno != ENOSPC);
    std::error_code error;
    if (number != -1 && !own.empty() && fs::equivalent(path, own.parent_path(), error)) {
        owns = number;
    }
    return number;
}

void MediaWatch::renew()
{
    const int fresh = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    whole = fresh != -1;
    if (fresh == -1) {
        return; // what was watched still is
    }
    if (events != -1) {
        close(events);
    }
    events = fresh;
    owns = -1;
    above = watch(folder.parent_path());
    top = watch(folder);
    for (const char* part : PARTS) {
        watch(folder / part);
        std::error_code error;
        for (fs::recursive_directory_iterator entry(folder / part, error), end;
             !error && entry != end; entry.increment(error)) {
            std::error_code unreadable;
            if (entry->is_directory(unreadable)) {
                watch(entry->path());
            }
        }
    }
}

bool MediaWatch::isOfMedia(const inotify_event& event) const
{
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        return true; // nobody knows what has changed
    }
    // Without a name it is the watched folder itself.
    const std::string name = event.len > 0 ? event.name : "";
    if (event.wd == above) {
        return name == folder.filename();
    }
    if (event.wd == owns && (name == own.filename() || name == Files::partName(own).filename())) {
        return false;
    }
    return event.wd != top || name.empty() ||
           std::find(PARTS.begin(), PARTS.end(), name) != PARTS.end();
}

bool MediaWatch::read()
{
    alignas(inotify_event) char buffer[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
    bool changed = false;
    for (ssize_t size = ::read(events, buffer, sizeof buffer); size > 0;
         size = ::read(events, buffer, sizeof buffer)) {
        for (const char* at = buffer; at < buffer + size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            changed = changed || isOfMedia(*event);
            at += sizeof *event + event->len;
        }
    }
    return changed;
}

} // namespace show
