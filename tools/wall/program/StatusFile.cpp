#include "StatusFile.h"

#include "StateNumber.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace wall {

namespace {

/// \param sorted  not empty
double quantile(const std::vector<double>& sorted, double fraction)
{
    return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1))];
}

} // namespace

StatusFile::StatusFile(const std::filesystem::path& path, std::vector<std::string> hostNames)
    : file(std::fopen(path.c_str(), "ae"), std::fclose), hosts(std::move(hostNames))
{
    if (file == nullptr) {
        throw std::runtime_error("cannot write " + path.string() + ": " + std::strerror(errno));
    }
    std::setvbuf(file.get(), nullptr, _IOLBF, BUFSIZ);
}

void StatusFile::add(const std::vector<FrameRecord>& records, double now)
{
    if (since == 0) {
        since = now;
        return;
    }
    ++frames;
    std::int64_t first = records.front().left;
    std::int64_t last = first;
    for (std::size_t rank = 0; rank < records.size(); ++rank) {
        const FrameRecord& record = records[rank];
        // Other machines have other clocks.
        if (hosts[rank] == hosts.front()) {
            first = std::min(first, record.left);
            last = std::max(last, record.left);
        }
        const double drawing = static_cast<double>(record.drawing);
        if (drawing > worstDrawing) {
            worstDrawing = drawing;
            worstRank = rank;
        }
        waiting += static_cast<double>(record.waiting);
    }
    skews.push_back(static_cast<double>(last - first) / 1e6);
    if (now - since >= 1) {
        write(records, now - since);
        since = now;
        frames = 0;
        skews.clear();
        worstDrawing = 0;
        waiting = 0;
    }
}

void StatusFile::write(const std::vector<FrameRecord>& records, double seconds)
{
    char time[32] = {};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%S", localtime_r(&now, &local));
    std::sort(skews.begin(), skews.end());
    std::fprintf(file.get(),
                 "%s frame %u rate %.1f skew %.2f %.2f ms draw %.1f ms %s wait %.1f ms "
                 "state %016" PRIx64 "\n",
                 time, records.front().frame - 1, frames / seconds, quantile(skews, 0.5),
                 quantile(skews, 0.95), worstDrawing, hosts[worstRank].c_str(),
                 waiting / frames / static_cast<double>(records.size()),
                 numberOf(records.front().state));
}

} // namespace wall
