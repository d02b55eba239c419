#include "SimulatedWall.h"

#include <algorithm>
#include <cstring>

/// What one rank has started.
struct SimulatedWall::Operation {
    struct Part {
        bool started = false;
        void* target = nullptr;
        std::vector<std::byte> bytes; ///< what it gives to the others
        double done = NEVER;
    };
    enum Kind { BROADCAST, ALLGATHER, BARRIER } kind = BARRIER;
    std::size_t size = 0;
    std::vector<Part> parts;
};

class SimulatedWall::Link final : public wall::Transport {
public:
    Link(SimulatedWall& wall, int number) : all(wall), own(number) {}

    int rank() const override { return own; }
    int size() const override { return static_cast<int>(all.links.size()); }

    void startBroadcast(void* bytes, std::size_t size) override
    {
        start(Operation::BROADCAST, bytes, bytes, size);
    }
    void startAllgather(const void* mine, void* target, std::size_t size) override
    {
        start(Operation::ALLGATHER, mine, target, size);
    }
    void startBarrier() override { start(Operation::BARRIER, nullptr, nullptr, 0); }

    bool test() override { return part().done <= all.time; }

    void pause() override
    {
        // Nothing else happens to this rank before one of these moments.
        constexpr double LOOK = 0.05;
        all.sleepUntil(own, std::min(part().done, all.time + LOOK));
    }

    double now() override { return all.time; }

    void tellWaiting(unsigned operation) override
    {
        for (const auto& link : all.links) {
            link->told[static_cast<std::size_t>(own)] = {operation, all.time + all.latency()};
        }
    }

    bool isWaiting(int rank, unsigned operation) override
    {
        const Told& other = told[static_cast<std::size_t>(rank)];
        return other.operation == operation && other.arrives <= all.time;
    }

private:
    friend class SimulatedWall;
    struct Told {
        unsigned operation = 0;
        double arrives = 0;
    };

    SimulatedWall& all;
    int own;
    std::size_t operations = 0;
    double due = 0;
    bool ended = false;
    std::vector<Told> told;

    Operation::Part& part()
    {
        return all.operations[operations - 1].parts[static_cast<std::size_t>(own)];
    }

    void start(Operation::Kind kind, const void* mine, void* target, std::size_t size)
    {
        if (operations == all.operations.size()) {
            all.operations.push_back({kind, size, {}});
            all.operations.back().parts.resize(all.links.size());
        }
        Operation& operation = all.operations[operations++];
        // The ranks of a wall start the same operations; MPI would hang or mix up what they send.
        if (operation.kind != kind || operation.size != size) {
            throw std::logic_error("two ranks have started different operations");
        }
        Operation::Part& mineNow = part();
        mineNow.started = true;
        mineNow.target = target;
        const auto* bytes = static_cast<const std::byte*>(mine);
        mineNow.bytes.assign(bytes, bytes + (mine != nullptr ? size : 0));
        all.complete(operation);
    }
};

SimulatedWall::SimulatedWall(int ranks, unsigned seed) : random(seed)
{
    for (int rank = 0; rank < ranks; ++rank) {
        links.push_back(std::make_unique<Link>(*this, rank));
        links.back()->told.resize(static_cast<std::size_t>(ranks));
    }
}

SimulatedWall::~SimulatedWall() = default;

double SimulatedWall::latency()
{
    return std::uniform_real_distribution<double>(0, LATENCY)(random);
}

/// Ends an operation that all ranks have started: each of them notices at a moment of its own.
void SimulatedWall::complete(Operation& operation)
{
    const auto started = [](const Operation::Part& part) { return part.started; };
    if (!std::all_of(operation.parts.begin(), operation.parts.end(), started)) {
        return;
    }
    for (std::size_t to = 0; to < operation.parts.size(); ++to) {
        auto* target = static_cast<std::byte*>(operation.parts[to].target);
        for (std::size_t from = 0; from < operation.parts.size(); ++from) {
            const std::vector<std::byte>& bytes = operation.parts[from].bytes;
            if (operation.kind == Operation::ALLGATHER) {
                std::memcpy(target + from * bytes.size(), bytes.data(), bytes.size());
            } else if (operation.kind == Operation::BROADCAST && from == 0 && to != 0) {
                std::memcpy(target, bytes.data(), bytes.size());
            }
        }
        operation.parts[to].done = time + latency();
        links[to]->due = std::min(links[to]->due, operation.parts[to].done);
    }
}

void SimulatedWall::run(const std::function<void(wall::Transport&)>& work)
{
    std::vector<std::thread> threads;
    running = 0;
    for (const auto& link : links) {
        threads.emplace_back([this, &work, &link = *link] {
            {
                std::unique_lock<std::mutex> lock(mutex);
                turn.wait(lock, [&] { return running == link.own; });
            }
            try {
                work(link);
            } catch (const Killed&) {
            }
            std::unique_lock<std::mutex> lock(mutex);
            link.ended = true;
            handOver(link.own, lock);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Lets the rank run that is due next, which may be the same one.
void SimulatedWall::handOver(int rank, std::unique_lock<std::mutex>& lock)
{
    const auto next =
        std::min_element(links.begin(), links.end(), [](const auto& a, const auto& b) {
            return (a->ended ? NEVER : a->due) < (b->ended ? NEVER : b->due);
        });
    if ((*next)->ended) {
        return;
    }
    running = (*next)->own;
    time = std::max(time, (*next)->due);
    turn.notify_all();
    if (!links[static_cast<std::size_t>(rank)]->ended) {
        turn.wait(lock, [&] { return running == rank; });
    }
}

void SimulatedWall::sleepUntil(int rank, double moment)
{
    std::unique_lock<std::mutex> lock(mutex);
    links[static_cast<std::size_t>(rank)]->due = moment;
    handOver(rank, lock);
    if (time > killedAt) {
        throw Killed();
    }
}

void SimulatedWall::compute(int rank, double seconds)
{
    // An operation that ends meanwhile does not wake it: it has none under way.
    sleepUntil(rank, time + seconds);
}

void SimulatedWall::die(int /*rank*/)
{
    killedAt = std::min(killedAt, time + 1);
    throw Killed();
}
