#include "Goals.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace soak {

namespace {

constexpr std::int64_t LARGEST_GROWTH = 512; // KiB
constexpr double SETTLED = 2;                // hours

template<typename... Values>
std::string text(const char* format, Values... values)
{
    char line[160];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

/// The sample that growth is counted from.
const Sample& startOf(const std::vector<Sample>& samples)
{
    const double start = settledAt(samples.back().hours);
    return *std::find_if(samples.begin(), samples.end(),
                         [start](const Sample& sample) { return sample.hours >= start; });
}

Goal judgeHeap(const Sample& start, const Sample& end)
{
    const auto bytes = static_cast<std::int64_t>(end.heap) - static_cast<std::int64_t>(start.heap);
    // Rounded up, so that a single byte above the limit counts.
    const std::int64_t growth = bytes > 0 ? (bytes + 1023) / 1024 : bytes / 1024;
    return {text("heap growth from hour %.2f to hour %.2f: %lld KiB, at most %lld", start.hours,
                 end.hours, static_cast<long long>(growth), static_cast<long long>(LARGEST_GROWTH)),
            growth <= LARGEST_GROWTH};
}

Goal judgeLists(const std::vector<Sample>& samples)
{
    const auto wrong = std::find_if(samples.begin(), samples.end(), [](const Sample& sample) {
        return sample.lists != sample.listsOfNodes;
    });
    if (wrong == samples.end()) {
        return {
            text("display lists: those of the living nodes, at the end %zu", samples.back().lists),
            true};
    }
    return {text("display lists: %zu at hour %.2f, where the living nodes account for %zu",
                 wrong->lists, wrong->hours, wrong->listsOfNodes),
            false};
}

Goal judgeTextures(const Sample& start, const Sample& end)
{
    return {text("textures: %zu at hour %.2f, %zu at hour %.2f", start.textures, start.hours,
                 end.textures, end.hours),
            start.textures == end.textures};
}

} // namespace

double settledAt(double hours)
{
    return std::min(SETTLED, hours / 2);
}

std::vector<Goal> judge(const std::vector<Sample>& samples)
{
    if (samples.empty()) {
        return {{"nothing was played", false}};
    }
    const Sample& start = startOf(samples);
    const Sample& end = samples.back();
    if (&start == &end) {
        return {{"too short a run: there is one sample in it to judge growth by", false}};
    }
    return {judgeHeap(start, end), judgeLists(samples), judgeTextures(start, end)};
}

} // namespace soak
