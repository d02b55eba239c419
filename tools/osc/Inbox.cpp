#include "Inbox.h"

#include <algorithm>
#include <tuple>

namespace osc {

using std::chrono::nanoseconds;

bool Inbox::isBefore(const Item& a, const Item& b)
{
    return std::tie(a.due, a.number) < std::tie(b.due, b.number);
}

void Inbox::keepNewer(std::optional<Item>& kept, const Item& item)
{
    if (!kept || isBefore(*kept, item)) {
        kept = item;
    }
}

Inbox::Inbox()
{
    queue.reserve(MOST_TAKEN);
    waiting.reserve(MOST_WAITING);
}

Counts Inbox::counts() const
{
    Counts counts = total;
    counts.dropped = counts.unknown + counts.refused + counts.early + counts.full;
    return counts;
}

void Inbox::add(const Reading& reading, const Moment& now)
{
    const Counts& added = reading.counts;
    total.packets += added.packets;
    total.malformed += added.malformed;
    total.messages += added.messages;
    total.unknown += added.unknown;
    total.refused += added.refused;
    for (const auto& [command, due] : reading.commands) {
        const nanoseconds ahead = due == IMMEDIATELY ? nanoseconds::zero() : between(now.wall, due);
        if (ahead > FARTHEST) {
            ++total.early;
        } else if (ahead > nanoseconds::zero()) {
            wait({now.steady + ahead, arrivals++, command});
        } else {
            total.late += ahead < nanoseconds::zero() ? 1 : 0;
            comeDue({now.steady, arrivals++, command});
        }
    }
}

void Inbox::wait(const Item& item)
{
    if (waiting.size() == MOST_WAITING) {
        ++total.full;
        return;
    }
    waiting.push_back(item);
    std::ranges::push_heap(waiting, isAfter);
}

void Inbox::comeDue(const Item& item)
{
    switch (item.command.kind) {
    case Command::Kind::FIGURE:
    case Command::Kind::RELEASE:
        keepNewer(figures[static_cast<std::size_t>(item.command.figure)], item);
        break;
    case Command::Kind::SEED:
        if (renewal && renewal->command.kind == Command::Kind::RESTART) {
            renewal.reset();
        }
        keepNewer(renewal, item);
        break;
    case Command::Kind::RESTART:
        if (!renewal || renewal->command.kind == Command::Kind::RESTART) {
            keepNewer(renewal, item);
        }
        break;
    default:
        if (queue.size() < MOST_QUEUED) {
            queue.push_back(item);
        } else {
            ++total.full;
        }
    }
}

bool Inbox::mayRenew(nanoseconds steady) const
{
    return !lastRenewal || steady - *lastRenewal >= RENEWAL_PAUSE;
}

std::vector<Command> Inbox::take(nanoseconds steady)
{
    while (!waiting.empty() && waiting.front().due <= steady) {
        comeDue(waiting.front());
        std::ranges::pop_heap(waiting, isAfter);
        waiting.pop_back();
    }

    if (isRenewing) {
        // The scene has begun anew since, however long that took.
        lastRenewal = steady;
        isRenewing = false;
    }
    std::vector<Command> commands;
    commands.reserve(MOST_TAKEN);
    for (std::optional<Item>& figure : figures) {
        if (figure) {
            queue.push_back(*figure);
            figure.reset();
        }
    }
    if (renewal && mayRenew(steady)) {
        queue.push_back(*renewal);
        renewal.reset();
        isRenewing = true;
    }
    std::ranges::sort(queue, isBefore);
    for (const Item& item : queue) {
        commands.push_back(item.command);
        commands.back().due = item.due;
    }
    queue.clear();
    return commands;
}

} // namespace osc
