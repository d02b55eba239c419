#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

namespace wall {

/// Mouse or keyboard at one tile.
struct InputEvent {
    std::int32_t kind;  ///< FLTK's: FL_PUSH, FL_DRAG ...
    std::int32_t x, y;  ///< the pointer on the whole wall, pixels from the top left
    std::int32_t key;   ///< key or button, as Fl::event_key returns it
    std::int32_t wheel; ///< steps of the wheel, down is positive

    bool operator==(const InputEvent&) const = default;
};

/// The parts of a scene's state, compared on all ranks.
using State = std::array<std::uint64_t, 6>;

/// Their names.
inline constexpr std::array<const char*, 6> STATE_PARTS = {"random", "boids", "figures",
                                                           "bodies", "view",  "counts"};

/// What rank 0 decides for a frame, for all ranks. It travels in its record, and reaches them as it
/// is, in Orders.
struct Lead {
    static constexpr std::uint32_t QUIT = 1;    ///< there is no further frame
    static constexpr std::uint32_t ANEW = 2;    ///< the scene begins again
    static constexpr std::uint32_t STEERED = 4; ///< figures can be led, in each frame of the show
    static constexpr std::uint32_t LED = 8;     ///< figure 1 is at its place; figures 2 and 3: the
                                                ///< next two bits; else it is as recorded

    std::uint32_t flags = 0;
    std::int32_t step = 0;            ///< of the recording
    std::uint32_t seed = 0;           ///< of the scene, should it begin again
    std::array<float, 6> places = {}; ///< x and y of each figure that is led, water units

    bool operator==(const Lead&) const = default;
};

/// What each rank tells all others before a frame. Its bytes travel as they are: all ranks have the
/// same kind of processor.
struct FrameRecord {
    static constexpr std::size_t EVENTS = 8;

    std::uint32_t frame = 0;  ///< the one to come, counted from 1
    Lead lead;                ///< of rank 0; that of the others counts for nothing
    State state{};            ///< after the frame before; zeros before the first one
    std::int64_t left = 0;    ///< when the barrier of the frame before was left, ns of the clock of
                              ///< this machine; 0: there was none
    float drawing = 0;        ///< ms that the frame before took, and how long this rank then waited
    float waiting = 0;        ///< for the others
    std::uint32_t events = 0; ///< how many there are, at most EVENTS
    std::uint32_t unused = 0;
    std::array<InputEvent, EVENTS> event{};

    bool operator==(const FrameRecord&) const = default;
};
static_assert(std::is_trivially_copyable_v<FrameRecord>);
static_assert(sizeof(FrameRecord) <= 272, "docs/performance.md says so");

} // namespace wall
