#pragma once

#include "MoCap.h"

#include <functional>
#include <memory>

/// A recording of three figures in one file.
/// \param positionOf  of a figure at a step
inline std::unique_ptr<MoCap>
recordingOf(int steps, const std::function<Vec3(int figure, int step)>& positionOf)
{
    auto recording = std::make_unique<MoCap>();
    for (int k = 0; k < 3; ++k) {
        auto* series = new SensorData;
        for (int i = 0; i < steps; ++i) {
            series->pos.push_back(new Vec3(positionOf(k, i)));
            series->ori.push_back(new Vec3(0, 0, static_cast<float>(k)));
            series->timestep.push_back(static_cast<float>(i) / 90);
        }
        recording->sensorDataList.push_back(series);
    }
    recording->numSteps = steps;
    return recording;
}
