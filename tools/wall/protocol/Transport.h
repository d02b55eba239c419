#pragma once

#include <cstddef>

namespace wall {

/// How the ranks of a wall reach each other: collective operations, of which each rank has one
/// under way at a time, in the same order on all ranks. A rank that is lost never comes to an
/// operation: what is waited for then does not end, and whoever waits has to give up.
class Transport {
public:
    virtual int rank() const = 0;
    virtual int size() const = 0;

    /// Starts to copy \p bytes of rank 0 to all others.
    /// \param bytes  borrows, until test
    virtual void startBroadcast(void* bytes, std::size_t size) = 0;

    /// Starts to copy \p own of each rank to all ranks.
    /// \param own   borrows \p size bytes, until test
    /// \param all   borrows; gets size() times \p size bytes, in the order of the ranks
    virtual void startAllgather(const void* own, void* all, std::size_t size) = 0;

    /// Starts an operation that ends when all ranks have started it.
    virtual void startBarrier() = 0;

    /// \return whether the operation that was started last has ended; once true, it is over
    virtual bool test() = 0;

    /// Sleeps a little, 0.1 to 0.2 ms.
    virtual void pause() = 0;

    /// Seconds since some moment; it never goes back.
    virtual double now() = 0;

    /// Tells all other ranks that this one waits in its \p operation. Does not wait.
    /// \param operation  how many operations this rank has started
    virtual void tellWaiting(unsigned operation) = 0;

    /// \return whether \p rank has told that it waits in that operation
    virtual bool isWaiting(int rank, unsigned operation) = 0;

protected:
    Transport() = default;
    ~Transport() = default;
    Transport(const Transport&) = default;
    Transport& operator=(const Transport&) = default;
};

} // namespace wall
