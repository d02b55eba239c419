#include "Protocol.h"

#include "Transport.h"

#include <FL/Enumerations.H>
#include <algorithm>
#include <cstring>

namespace wall {

namespace {

std::string secondsOf(double time)
{
    return std::to_string(static_cast<int>(time)) + " s";
}

bool isQuit(const InputEvent& event)
{
    return event.kind == FL_KEYDOWN && (event.key == 'q' || event.key == 'Q');
}

} // namespace

Protocol::Protocol(Transport& transport, std::function<void(const std::string&)> report)
    : net(transport), say(std::move(report))
{
}

void Protocol::setNames(std::vector<std::string> hosts)
{
    names = std::move(hosts);
}

std::string Protocol::nameOf(int rank) const
{
    const std::string number = "rank " + std::to_string(rank);
    const auto at = static_cast<std::size_t>(rank);
    return at < names.size() ? names[at] + " (" + number + ")" : number;
}

std::string Protocol::listOf(const std::vector<int>& ranks) const
{
    std::string text;
    for (const int rank : ranks) {
        text += text.empty() ? "" : ", ";
        text += nameOf(rank);
    }
    return text;
}

/// The ranks that have not told that they wait in the current operation; never this one.
std::vector<int> Protocol::missing()
{
    std::vector<int> ranks;
    for (int rank = 0; rank < net.size(); ++rank) {
        if (rank != net.rank() && !net.isWaiting(rank, operations)) {
            ranks.push_back(rank);
        }
    }
    return ranks;
}

bool Protocol::isSomebodyWaiting()
{
    return missing().size() + 1 < static_cast<std::size_t>(net.size());
}

/// Whether this rank speaks for those that wait: the first of them does.
bool Protocol::isSpeaker(const std::vector<int>& others) const
{
    int first = 0;
    while (std::find(others.begin(), others.end(), first) != others.end()) {
        ++first;
    }
    return first == net.rank() && !others.empty();
}

/// Ends the wall. \param isSpeaker  this rank says why
void Protocol::fail(const std::string& why, bool isSpeaker) const
{
    if (isSpeaker) {
        say("the wall ends: " + why);
    }
    throw WallError(why);
}

void Protocol::wait()
{
    const double longest = starting ? LONGEST_AT_START : LONGEST;
    const double patience = starting ? NAMED_AT_START : NAMED;
    const double start = net.now();
    double asked = start;
    bool told = false;
    bool named = false;
    while (!net.test()) {
        net.pause();
        const double now = net.now();
        const double waited = now - start;
        // Who hears that another one waits says so too: all may not have come here together.
        bool called = waited > TELLING;
        if (!told && !called && now - asked > LISTENING) {
            asked = now;
            called = isSomebodyWaiting();
        }
        if (!told && called) {
            net.tellWaiting(operations);
            told = true;
        }
        if (!named && waited > patience) {
            const std::vector<int> others = missing();
            named = true;
            if (isSpeaker(others)) {
                say("no answer for " + secondsOf(patience) + " from " + listOf(others));
            }
        }
        if (waited > longest) {
            fail("no answer for " + secondsOf(longest) + " from " + listOf(missing()),
                 isSpeaker(missing()));
        }
    }
}

std::vector<std::byte> Protocol::gather(const void* own, std::size_t size)
{
    std::vector<std::byte> all(size * static_cast<std::size_t>(net.size()));
    begin();
    net.startAllgather(own, all.data(), size);
    wait();
    return all;
}

void Protocol::broadcast(std::string& bytes)
{
    std::uint64_t length = bytes.size();
    begin();
    net.startBroadcast(&length, sizeof length);
    wait();
    bytes.resize(length);
    if (length > 0) {
        begin();
        net.startBroadcast(bytes.data(), length);
        wait();
    }
}

Orders Protocol::exchange(const FrameRecord& own)
{
    starting = false;
    const std::vector<std::byte> bytes = gather(&own, sizeof own);
    Orders orders;
    orders.records.resize(static_cast<std::size_t>(net.size()));
    std::memcpy(orders.records.data(), bytes.data(), bytes.size());

    const FrameRecord& first = orders.records.front();
    for (std::size_t rank = 0; rank < orders.records.size(); ++rank) {
        if (orders.records[rank].frame != first.frame) {
            fail(nameOf(static_cast<int>(rank)) + " is in frame " +
                     std::to_string(orders.records[rank].frame) + ", " + nameOf(0) + " in frame " +
                     std::to_string(first.frame),
                 net.rank() == 0);
        }
    }
    orders.lead = first.lead;
    orders.quit = (first.lead.flags & Lead::QUIT) != 0;
    orders.anew = (first.lead.flags & Lead::ANEW) != 0;
    orders.inputs = gate.join(orders.records);
    orders.quit |= std::any_of(orders.inputs.begin(), orders.inputs.end(), isQuit);
    orders.mismatch = differenceIn(orders.records);
    if (orders.mismatch && !orders.quit) {
        newBeginnings.push_back(first.frame);
        const auto recent =
            std::count_if(newBeginnings.begin(), newBeginnings.end(), [&](std::uint32_t frame) {
                return first.frame - frame < FRAMES_OF_PATIENCE;
            });
        orders.quit = recent > PATIENCE;
        orders.anew = !orders.quit;
    }
    if (orders.anew) {
        orders.lead.step = 0; // after a difference the voice has not begun anew yet
    }
    return orders;
}

void Protocol::meet()
{
    begin();
    net.startBarrier();
    wait();
}

std::optional<Mismatch> differenceIn(const std::vector<FrameRecord>& records)
{
    std::optional<Mismatch> found;
    for (std::size_t part = 0; part < STATE_PARTS.size() && !found; ++part) {
        const auto valueOf = [part](const FrameRecord& record) { return record.state[part]; };
        // Nearly always; the search below takes the square of the number of ranks.
        if (std::all_of(records.begin(), records.end(), [&](const FrameRecord& record) {
                return valueOf(record) == valueOf(records.front());
            })) {
            continue;
        }
        const auto ranksWith = [&](std::uint64_t value) {
            return std::count_if(records.begin(), records.end(), [&](const FrameRecord& record) {
                return valueOf(record) == value;
            });
        };
        // max_element gives the first of equals: rank 0, if no value has more ranks than its own.
        const auto usual = std::max_element(
            records.begin(), records.end(), [&](const FrameRecord& a, const FrameRecord& b) {
                return ranksWith(valueOf(a)) < ranksWith(valueOf(b));
            });
        for (std::size_t rank = 0; rank < records.size() && !found; ++rank) {
            if (valueOf(records[rank]) != valueOf(*usual)) {
                found =
                    Mismatch{records[rank].frame - 1, static_cast<int>(rank), STATE_PARTS[part]};
            }
        }
    }
    return found;
}

} // namespace wall
