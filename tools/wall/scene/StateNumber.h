#pragma once

#include "FrameRecord.h"
#include "StateHash.h"

namespace wall {

/// \return one number for the state, without the counts: the whole of StateHash, as kelpix-record
///         prints it
inline std::uint64_t numberOf(const State& state)
{
    return StateHash{state[0], state[1], state[2], state[3], state[4]}.whole();
}

} // namespace wall
