#include "MpiTransport.h"

#include <chrono>
#include <mpi.h>
#include <thread>

namespace wall {

namespace {

constexpr int WAITING = 1; // a message's tag

} // namespace

struct MpiTransport::Requests {
    struct Message {
        unsigned operation;
        MPI_Request request;
    };

    MPI_Request operation = MPI_REQUEST_NULL;
    std::list<Message> told; ///< under way; a list keeps its elements where they are

    void forgetArrived()
    {
        told.remove_if([](Message& message) {
            int arrived = 0;
            MPI_Test(&message.request, &arrived, MPI_STATUS_IGNORE);
            return arrived != 0;
        });
    }
};

MpiTransport::MpiTransport() : requests(std::make_unique<Requests>())
{
    MPI_Init(nullptr, nullptr);
    MPI_Comm_rank(MPI_COMM_WORLD, &ownRank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    heard.resize(static_cast<std::size_t>(ranks));
}

MpiTransport::~MpiTransport() = default;

void MpiTransport::leave()
{
    requests->forgetArrived();
    MPI_Finalize();
}

void MpiTransport::startBroadcast(void* bytes, std::size_t size)
{
    MPI_Ibcast(bytes, static_cast<int>(size), MPI_BYTE, 0, MPI_COMM_WORLD, &requests->operation);
}

void MpiTransport::startAllgather(const void* own, void* all, std::size_t size)
{
    const int count = static_cast<int>(size);
    MPI_Iallgather(own, count, MPI_BYTE, all, count, MPI_BYTE, MPI_COMM_WORLD,
                   &requests->operation);
}

void MpiTransport::startBarrier()
{
    MPI_Ibarrier(MPI_COMM_WORLD, &requests->operation);
}

bool MpiTransport::test()
{
    int ended = 0;
    MPI_Test(&requests->operation, &ended, MPI_STATUS_IGNORE);
    return ended != 0;
}

void MpiTransport::pause()
{
    // MPI's own waiting would keep a processor busy.
    std::this_thread::sleep_for(std::chrono::microseconds(100));
}

double MpiTransport::now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void MpiTransport::tellWaiting(unsigned operation)
{
    requests->forgetArrived();
    // forgetArrived tests the requests later.
    for (int rank = 0; rank < ranks; ++rank) { // NOLINT(clang-analyzer-optin.mpi.MPI-Checker)
        if (rank != ownRank) {
            requests->told.push_back({operation, MPI_REQUEST_NULL});
            Requests::Message& message = requests->told.back();
            MPI_Isend(&message.operation, 1, MPI_UNSIGNED, rank, WAITING, MPI_COMM_WORLD,
                      &message.request);
        }
    }
}

bool MpiTransport::isWaiting(int rank, unsigned operation)
{
    int arrived = 0;
    MPI_Status status;
    MPI_Iprobe(MPI_ANY_SOURCE, WAITING, MPI_COMM_WORLD, &arrived, &status);
    while (arrived != 0) {
        unsigned named = 0;
        MPI_Recv(&named, 1, MPI_UNSIGNED, status.MPI_SOURCE, WAITING, MPI_COMM_WORLD,
                 MPI_STATUS_IGNORE);
        heard[static_cast<std::size_t>(status.MPI_SOURCE)] = named;
        MPI_Iprobe(MPI_ANY_SOURCE, WAITING, MPI_COMM_WORLD, &arrived, &status);
    }
    return heard[static_cast<std::size_t>(rank)] == operation;
}

} // namespace wall
