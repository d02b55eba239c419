#pragma once

/// How often the parts of the scene advance, per second. The program's timers take their rates from
/// here, and so does everything that imitates them or makes recordings for them.
namespace Rates {

/// Updates of the scene: one step of every node.
inline constexpr int UPDATES = 40;

/// Redraws of the window.
inline constexpr int REDRAWS = 40;

/// Ticks of the motion-capture clock, which sets the step of the recording.
inline constexpr int CLOCK_TICKS = 90;

/// Records of a recording for each second of its voice: one for each tick of the clock.
inline constexpr int RECORDS = CLOCK_TICKS;

} // namespace Rates
