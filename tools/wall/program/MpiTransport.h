#pragma once

#include "Transport.h"

#include <list>
#include <memory>
#include <vector>

namespace wall {

/// The ranks of an MPI job. One object in a process: it starts MPI and ends it.
///
/// All operations are non-blocking ones: a blocking one of one rank would not match a non-blocking
/// one of another. What MPI itself cannot do ends the process, and with it all ranks, with MPI's
/// message.
class MpiTransport final : public Transport {
public:
    /// Starts MPI, which ends the process with its own message when it cannot.
    MpiTransport();
    MpiTransport(const MpiTransport&) = delete;
    MpiTransport& operator=(const MpiTransport&) = delete;

    /// Ends MPI, unless it was not left by leave: the launcher then ends all ranks with this
    /// process.
    ~MpiTransport();

    /// The ranks have nothing more to say to each other; all of them call this.
    void leave();

    int rank() const override { return ownRank; }
    int size() const override { return ranks; }
    void startBroadcast(void* bytes, std::size_t size) override;
    void startAllgather(const void* own, void* all, std::size_t size) override;
    void startBarrier() override;
    bool test() override;
    void pause() override;
    double now() override;
    void tellWaiting(unsigned operation) override;
    bool isWaiting(int rank, unsigned operation) override;

private:
    struct Requests;
    int ownRank = 0;
    int ranks = 1;
    std::unique_ptr<Requests> requests; ///< owns; hides MPI's types
    std::vector<unsigned> heard;        ///< by rank: the operation in which it waited last
};

} // namespace wall
