#pragma once

#include "Transport.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

/// The ranks of a wall in one process, on a clock of its own: each in a thread, of which one runs
/// at a time, the one that is due next. What happens depends on the seed alone.
class SimulatedWall {
public:
    /// A rank was killed, or the launcher has ended it because another one was.
    struct Killed {};

    SimulatedWall(int ranks, unsigned seed);
    SimulatedWall(const SimulatedWall&) = delete;
    SimulatedWall& operator=(const SimulatedWall&) = delete;
    ~SimulatedWall();

    /// Runs \p work on every rank until all have returned. Killed ends a rank's work.
    void run(const std::function<void(wall::Transport&)>& work);

    /// To be called by a rank's work: it computes for so long.
    void compute(int rank, double seconds);

    /// It does so and dies; the launcher ends the others within a second.
    [[noreturn]] void die(int rank);

    double now() const { return time; }

private:
    class Link;
    struct Operation;

    static constexpr double NEVER = 1e30;
    static constexpr double LATENCY = 0.001; ///< seconds, the longest

    std::mt19937 random;
    std::vector<std::unique_ptr<Link>> links;
    std::vector<Operation> operations;
    std::mutex mutex;
    std::condition_variable turn;
    double time = 0;
    double killedAt = NEVER;
    int running = -1;

    double latency();
    void handOver(int rank, std::unique_lock<std::mutex>& lock);
    void sleepUntil(int rank, double moment);
    void complete(Operation& operation);
};
