#include "Inputs.h"

#include <FL/Enumerations.H>
#include <algorithm>

namespace wall {

namespace {

bool isMovement(const InputEvent& event)
{
    return event.kind == FL_MOVE || event.kind == FL_DRAG;
}

} // namespace

void InputQueue::add(const InputEvent& event)
{
    if (!waiting.empty() && isMovement(event) && waiting.back().kind == event.kind &&
        waiting.back().key == event.key) {
        waiting.back() = event;
    } else if (waiting.size() < MOST || event.kind == FL_RELEASE) {
        waiting.push_back(event);
    }
}

void InputQueue::fill(FrameRecord& record)
{
    const std::size_t count = std::min(waiting.size(), FrameRecord::EVENTS);
    std::copy_n(waiting.begin(), count, record.event.begin());
    waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(count));
    record.events = static_cast<std::uint32_t>(count);
}

std::vector<InputEvent> InputGate::join(const std::vector<FrameRecord>& records)
{
    std::vector<InputEvent> joined;
    for (std::size_t rank = 0; rank < records.size(); ++rank) {
        const FrameRecord& record = records[rank];
        const std::size_t count = std::min<std::size_t>(record.events, FrameRecord::EVENTS);
        for (std::size_t i = 0; i < count; ++i) {
            take(static_cast<int>(rank), record.event[i], joined);
        }
    }
    return joined;
}

void InputGate::take(int rank, const InputEvent& event, std::vector<InputEvent>& joined)
{
    const bool pointer = isMovement(event) || event.kind == FL_PUSH || event.kind == FL_RELEASE;
    if (!pointer) {
        joined.push_back(event);
        return;
    }
    const std::uint32_t button = 1U << (static_cast<std::uint32_t>(event.key) % 32);
    if (holder == -1 && event.kind == FL_PUSH) {
        holder = rank;
        held = 0;
        // The pointer was last seen at another tile, perhaps: a drag starts where the button is
        // pressed.
        joined.push_back({FL_MOVE, event.x, event.y, event.key, 0});
    }
    if (holder == rank && event.kind == FL_PUSH) {
        held |= button;
    }
    const bool passes = holder == rank || (holder == -1 && event.kind == FL_MOVE);
    if (passes) {
        joined.push_back(event);
    }
    if (holder == rank && event.kind == FL_RELEASE) {
        held &= ~button;
        holder = held == 0 ? -1 : rank;
    }
}

} // namespace wall
