#include "SteeredRecording.h"

#include "MoCap.h"
#include "RecordedPlace.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

SteeredRecording::SteeredRecording(MoCap& recording)
    : played(recording), count(std::numeric_limits<int>::max())
{
    for (std::size_t k = 0; k < FIGURES; ++k) {
        if (k < recording.sensorDataList.size()) {
            for (const Vec3* record : recording.sensorDataList[k]->pos) {
                untouched[k].push_back(*record);
            }
        }
        count = std::min(count, static_cast<int>(untouched[k].size()));
    }
    if (count == 0) {
        throw std::runtime_error("data/mocap.txt names no recording of three figures");
    }
}

void SteeredRecording::write(int step, const Poses& poses)
{
    const auto at = static_cast<std::size_t>(step);
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const Vec3& record = untouched[k][at];
        *played.sensorDataList[k]->pos[at] =
            poses[k] ? RecordedPlace::recordFor(*poses[k], static_cast<int>(k), record.z) : record;
    }
}

Vec3 SteeredRecording::placeAt(int figure, int step) const
{
    return RecordedPlace::placeOf(
        untouched[static_cast<std::size_t>(figure)][static_cast<std::size_t>(step)], figure);
}

int SteeredRecording::nearestStep(int step) const
{
    return std::clamp(step, 0, count - 1);
}
