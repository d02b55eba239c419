#include "MediaWatch.h"

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

MediaWatch::MediaWatch(fs::path folder) : folder(std::move(folder))
{
    renew();
}

MediaWatch::~MediaWatch()
{
    close(events);
}

int MediaWatch::watch(const fs::path& path) const
{
    return inotify_add_watch(events, path.c_str(),
                             IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO |
                                 IN_CREATE | IN_DELETE | IN_ONLYDIR);
}

void MediaWatch::renew()
{
    const int fresh = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fresh == -1) {
        throw std::runtime_error(std::string("cannot watch the media: ") + std::strerror(errno));
    }
    if (events != -1) {
        close(events);
    }
    events = fresh;
    above = watch(folder.parent_path());
    watch(folder);
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        if (entry->is_directory(unreadable)) {
            watch(entry->path());
        }
    }
}

bool MediaWatch::read()
{
    alignas(inotify_event) char buffer[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
    bool changed = false;
    for (ssize_t size = ::read(events, buffer, sizeof buffer); size > 0;
         size = ::read(events, buffer, sizeof buffer)) {
        for (const char* at = buffer; at < buffer + size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            // Of its neighbors only its own name counts.
            changed = changed || event->wd != above ||
                      (event->len > 0 && folder.filename() == event->name);
            at += sizeof *event + event->len;
        }
    }
    return changed;
}

} // namespace show
