#include "Schedule.h"

#include "Stage.h"

#include <algorithm>

namespace record {

namespace {

std::int64_t roundUp(std::int64_t dividend, std::int64_t divisor)
{
    return (dividend + divisor - 1) / divisor;
}

} // namespace

std::int64_t stepShownAt(Microseconds time)
{
    return time * Stage::STEPS_PER_SECOND / SECOND;
}

std::int64_t stepAfter(Microseconds time)
{
    return roundUp(time * Stage::STEPS_PER_SECOND, SECOND);
}

Schedule::Schedule(Microseconds from, Microseconds length, int framesPerSecond)
    : start(from), fps(framesPerSecond), count(roundUp(length * fps, SECOND))
{
}

std::int64_t Schedule::stepOf(std::int64_t frame) const
{
    return (start * fps + frame * SECOND) * Stage::STEPS_PER_SECOND / (fps * SECOND);
}

std::int64_t Schedule::firstFrameFrom(std::int64_t step) const
{
    const std::int64_t time = roundUp(step * fps * SECOND, Stage::STEPS_PER_SECOND) - start * fps;
    return std::clamp<std::int64_t>(roundUp(std::max<std::int64_t>(time, 0), SECOND), 0, count);
}

std::int64_t Schedule::framesOf(std::int64_t step) const
{
    return firstFrameFrom(step + 1) - firstFrameFrom(step);
}

void Schedule::endBefore(std::int64_t step)
{
    count = firstFrameFrom(step);
}

} // namespace record
