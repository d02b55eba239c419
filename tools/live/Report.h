#pragma once

#include "Counts.h"

#include <cstdint>
#include <ctime>
#include <string>

namespace live {

class LiveScene;

/// What a second of the show was like.
struct Second {
    std::uint64_t frame = 0; ///< the latest, counted from 1
    double rate = 0;         ///< frames
    double latency = 0;      ///< ms, the longest from a message's arrival to its drawn frame
};

/// A line of text: how the show does.
///
///     time=2026-11-22T10:20:31Z frame=1234 rate=40.0 seed=7 step=2776 steps=10800
///     figure1=led,0.2500,0.7500 figure2=recorded,0.5000,0.3120 figure3=recorded,0.5000,-0.1000
///     zoom=1.00 messages=120 dropped=2 latency_ms=27.1
///
/// in one line. Figures: led, returning or recorded, and where they are seen in the picture, 0..1
/// from left to right and from bottom to top; "behind" is behind the eye.
std::string lineOf(const LiveScene& scene, std::time_t time, unsigned seed, const Second& second,
                   const osc::Counts& counts);

} // namespace live
