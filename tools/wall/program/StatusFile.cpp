#include "StatusFile.h"

#include "StateNumber.h"
#include "TimeText.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <sstream>

namespace wall {

namespace {

/// \param sorted  not empty
double quantile(const std::vector<double>& sorted, double fraction)
{
    return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1))];
}

} // namespace

StatusFile::StatusFile(const std::filesystem::path& path, std::vector<std::string> hostNames)
    : file(path), hosts(std::move(hostNames))
{
    file.check();
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
        const std::string line = lineOf(records, now - since);
        since = now;
        frames = 0;
        skews.clear();
        worstDrawing = 0;
        waiting = 0;
        file.write(line);
    }
}

std::string StatusFile::lineOf(const std::vector<FrameRecord>& records, double seconds)
{
    std::sort(skews.begin(), skews.end());
    std::ostringstream line;
    line << "time=" << status::text(std::time(nullptr)) << " frame=" << records.front().frame - 1
         << std::fixed << std::setprecision(1) << " rate=" << frames / seconds
         << std::setprecision(2) << " skew_ms=" << quantile(skews, 0.5)
         << " skew_p95_ms=" << quantile(skews, 0.95) << std::setprecision(1)
         << " draw_ms=" << worstDrawing << " slowest=" << hosts[worstRank]
         << " wait_ms=" << waiting / frames / static_cast<double>(records.size())
         << " state=" << std::hex << std::setw(16) << std::setfill('0')
         << numberOf(records.front().state);
    return line.str();
}

} // namespace wall
