#pragma once

#include "Reader.h"

#include <array>
#include <chrono>
#include <optional>

namespace osc {

/// A moment on both clocks.
struct Moment {
    TimeTag wall;                    ///< time of day, as bundles have it
    std::chrono::nanoseconds steady; ///< since some moment; it never goes back
};

/// Keeps what packets asked for until it is taken: of each figure the newest place or release; the
/// newest seed, or else a restart; of all else at most MOST_QUEUED; and what is not due yet, at
/// most MOST_WAITING. It allocates nothing but what take returns.
class Inbox {
public:
    static constexpr std::size_t MOST_QUEUED = 256;
    static constexpr std::size_t MOST_WAITING = 4096;
    /// These, a command for each figure, and a seed or restart.
    static constexpr std::size_t MOST_TAKEN = MOST_QUEUED + 4;
    /// No bundle may be for a later time.
    static constexpr std::chrono::seconds FARTHEST{60};
    /// The scene plays so long before it begins anew again: from the take that follows one with a
    /// seed or restart. The newest of them waits.
    static constexpr std::chrono::seconds RENEWAL_PAUSE{1};

    Inbox();

    /// Adds a packet that arrived now. Bundles wait for their time, by the difference to the time
    /// of day that is now: setting the clock later moves none of them. Those whose time has passed
    /// are due now.
    void add(const Reading& reading, const Moment& now);

    /// \return what is due, at most MOST_TAKEN, in the order in which it came due; of the same
    /// time, in that of arrival
    std::vector<Command> take(std::chrono::nanoseconds steady);

    Counts counts() const;

private:
    struct Item {
        std::chrono::nanoseconds due;
        std::uint64_t number; ///< of its arrival
        Command command;
    };
    static bool isBefore(const Item& a, const Item& b);
    static bool isAfter(const Item& a, const Item& b) { return isBefore(b, a); }
    static void keepNewer(std::optional<Item>& kept, const Item& item);

    void wait(const Item& item);
    void comeDue(const Item& item);
    bool mayRenew(std::chrono::nanoseconds steady) const;

    std::array<std::optional<Item>, 3> figures;
    std::optional<Item> renewal;
    bool isRenewing = false; ///< the latest take had a seed or restart
    std::optional<std::chrono::nanoseconds> lastRenewal;
    std::vector<Item> queue;
    std::vector<Item> waiting; ///< a heap; what is due first is its front
    std::uint64_t arrivals = 0;
    Counts total; ///< but dropped
};

} // namespace osc
