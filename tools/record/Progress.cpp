#include "Progress.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

namespace record {

namespace {

constexpr std::int64_t BAR = 40; // characters
constexpr Progress::Duration PERIOD{0.1};

} // namespace

Progress::Progress(std::FILE* out, bool terminal, std::int64_t total)
    : file(out), onTerminal(terminal), whole(total)
{
}

Progress::~Progress()
{
    if (shown.count() >= 0) {
        std::fputs("\r\033[K", file);
        std::fflush(file);
    }
}

void Progress::show(std::int64_t done, Duration elapsed)
{
    const std::string left = timeLeft(done, whole, elapsed);
    const std::int64_t percent = done * 100 / whole;
    if (!onTerminal) {
        if (done * 10 / whole > tenths) {
            tenths = done * 10 / whole;
            std::fprintf(file, "%" PRId64 " %%, %s\n", percent, left.c_str());
            std::fflush(file);
        }
        return;
    }
    if (shown.count() >= 0 && elapsed - shown < PERIOD) {
        return;
    }
    shown = elapsed;
    std::string bar(static_cast<std::size_t>(done * BAR / whole), '#');
    bar.resize(BAR, '.');
    std::fprintf(file, "\r[%s] %3" PRId64 " %%  %s\033[K", bar.c_str(), percent, left.c_str());
    std::fflush(file);
}

std::string timeLeft(std::int64_t done, std::int64_t total, Progress::Duration elapsed)
{
    if (done <= 0) {
        return "";
    }
    const double rest =
        elapsed.count() * static_cast<double>(total - done) / static_cast<double>(done);
    const std::int64_t seconds = std::llround(std::ceil(rest));
    char text[64];
    if (seconds < 3600) {
        std::snprintf(text, sizeof text, "%" PRId64 ":%02" PRId64 " left", seconds / 60,
                      seconds % 60);
    } else {
        std::snprintf(text, sizeof text, "%" PRId64 ":%02" PRId64 ":%02" PRId64 " left",
                      seconds / 3600, seconds / 60 % 60, seconds % 60);
    }
    return text;
}

} // namespace record
