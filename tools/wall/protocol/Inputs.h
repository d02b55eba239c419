#pragma once

#include "FrameRecord.h"

#include <cstddef>
#include <deque>
#include <vector>

namespace wall {

/// The events of one tile until they are sent.
class InputQueue {
public:
    /// Events that are kept; what comes while there are so many is dropped.
    static constexpr std::size_t MOST = 256;

    /// A movement replaces one just before it: only where the pointer is counts.
    void add(const InputEvent& event);

    /// Moves the oldest events into the record.
    void fill(FrameRecord& record);

private:
    std::deque<InputEvent> waiting;
};

/// Joins the events of all ranks to those of one mouse and keyboard. All ranks get the same records
/// and so come to the same result.
///
/// Who has pressed a button holds the pointer until all its buttons are released: meanwhile
/// movements, drags and buttons of others do nothing. Wheel and keys always count.
class InputGate {
public:
    /// \return the events of this frame, in the order of the ranks
    std::vector<InputEvent> join(const std::vector<FrameRecord>& records);

private:
    int holder = -1;        ///< the rank that holds the pointer; -1: none
    std::uint32_t held = 0; ///< its buttons, a bit for each

    void take(int rank, const InputEvent& event, std::vector<InputEvent>& joined);
};

} // namespace wall
