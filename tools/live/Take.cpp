#include "Take.h"

#include "MoCap.h"
#include "RecordedPlace.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace live {

namespace {

/// The shortest digits that bring a number back.
void append(std::string& text, float number)
{
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    text += ' ';
    text.append(digits, error == std::errc() ? end : digits);
}

void append(std::string& text, const Vec3& v)
{
    append(text, v.x);
    append(text, v.y);
    append(text, v.z);
}

/// What lies between two records, at the share \p part of the way.
Vec3 between(const Vec3& from, const Vec3& to, double part)
{
    const auto mixed = [part](float a, float b) {
        const auto start = static_cast<double>(a);
        return static_cast<float>(start + (static_cast<double>(b) - start) * part);
    };
    return {mixed(from.x, to.x), mixed(from.y, to.y), mixed(from.z, to.z)};
}

} // namespace

Take::Take(const SteeredRecording& recording) : recorded(recording)
{
    for (std::vector<Note>& figure : notes) {
        figure.resize(static_cast<std::size_t>(recording.steps()));
    }
}

void Take::note(int step, const Poses& poses)
{
    const auto at = static_cast<std::size_t>(step);
    for (std::size_t k = 0; k < FIGURES; ++k) {
        if (poses[k]) {
            const float z = recorded.recordsOf(k)[at].z;
            notes[k][at] = {Mark::LED, RecordedPlace::recordFor(*poses[k], static_cast<int>(k), z)};
            led = true;
        } else {
            notes[k][at] = {Mark::AS_RECORDED, {}};
        }
    }
    latest = step;
}

void Take::end(Steering steering, const WaterView& view)
{
    if (latest < 0) {
        return;
    }
    for (int k = 0; k < static_cast<int>(FIGURES); ++k) {
        steering.release(k);
    }
    // As many steps an update as the clock makes.
    const int from = latest;
    for (int update = 1;; ++update) {
        const int step = from + update * Rates::CLOCK_TICKS / Rates::UPDATES;
        if (step >= recorded.steps()) {
            return;
        }
        const Poses poses = steering.next(recorded, step, view);
        note(step, poses);
        if (std::none_of(poses.begin(), poses.end(), [](const auto& pose) { return pose; })) {
            return;
        }
    }
}

/// The figure's records, one for each of the recording's.
std::vector<Vec3> Take::recordsOf(std::size_t figure) const
{
    std::vector<Vec3> records = recorded.recordsOf(figure);
    const std::vector<Note>& marks = notes[figure];
    std::optional<std::size_t> before;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i].mark == Mark::NONE) {
            continue;
        }
        if (marks[i].mark == Mark::LED) {
            records[i] = marks[i].record;
        }
        if (before && (marks[i].mark == Mark::LED || marks[*before].mark == Mark::LED)) {
            const auto gap = static_cast<double>(i - *before);
            for (std::size_t j = *before + 1; j < i; ++j) {
                records[j] =
                    between(records[*before], records[i], static_cast<double>(j - *before) / gap);
            }
        }
        before = i;
    }
    return records;
}

std::string Take::text(const MoCap& times) const
{
    std::array<std::vector<Vec3>, FIGURES> records;
    std::size_t count = recorded.recordsOf(0).size();
    for (std::size_t k = 0; k < FIGURES; ++k) {
        records[k] = recordsOf(k);
        count = std::min(count, records[k].size());
    }
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char time[32];
        std::snprintf(time, sizeof time, "%.4f",
                      static_cast<double>(times.sensorDataList[0]->timestep[i]));
        text += time;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            append(text, records[k][i]);
            append(text, *times.sensorDataList[k]->ori[i]);
        }
        text += " 0 0 0 0 0 0\n";
    }
    return text;
}

} // namespace live
