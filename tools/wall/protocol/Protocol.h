#pragma once

#include "FrameRecord.h"
#include "Inputs.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace wall {

class Transport;

/// The wall cannot go on. One of its ranks has said why.
class WallError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The first difference between the ranks' states.
struct Mismatch {
    std::uint32_t frame;
    int rank;         ///< the first one that does not have what most ranks have
    const char* part; ///< the first part in which it differs, of STATE_PARTS

    bool operator==(const Mismatch&) const = default;
};

/// What all ranks do in the next frame.
struct Orders {
    bool quit = false; ///< the frame is not to be played
    bool anew = false; ///< the scene begins again with the lead's seed, before this frame is played
    Lead lead;         ///< that of rank 0; its step is 0 when the scene begins again
    std::vector<InputEvent> inputs;   ///< to be handed to the scene before its update
    std::optional<Mismatch> mismatch; ///< of the frame before; then anew is set, or quit
    std::vector<FrameRecord> records; ///< of all ranks, for what is measured
};

/// One rank's part in keeping a wall in step. In each frame all ranks exchange a record, do what
/// follows from all records, and meet once more before they show the frame.
///
/// A rank that waits for more than NAMED seconds finds out for whom, and one of the waiting ranks
/// says it. After LONGEST seconds the wall ends. At the start both are longer.
class Protocol {
public:
    static constexpr double TELLING = 1;      ///< seconds after which ranks tell that they wait
    static constexpr double LISTENING = 0.01; ///< seconds between two looks for who has told
    static constexpr double NAMED = 3;
    static constexpr double LONGEST = 30;

    /// The same before the first exchange: machines load their media at different speeds.
    static constexpr double NAMED_AT_START = 15;
    static constexpr double LONGEST_AT_START = 120;

    /// So many new beginnings after differences within FRAMES_OF_PATIENCE frames are the last ones.
    static constexpr int PATIENCE = 3;
    static constexpr std::uint32_t FRAMES_OF_PATIENCE = 400;

    /// \param transport  borrows
    /// \param report     gets lines for the user, on one rank only: who is waited for
    Protocol(Transport& transport, std::function<void(const std::string&)> report);

    /// The hosts' names, for messages; before, ranks have numbers only.
    void setNames(std::vector<std::string> hosts);

    /// Gathers \p size bytes of each rank. Throws WallError when a rank does not answer.
    /// \return size() times that, in the order of the ranks
    std::vector<std::byte> gather(const void* own, std::size_t size);

    /// Copies \p bytes of rank 0 to all ranks; their length is rank 0's.
    /// Throws WallError when a rank does not answer.
    void broadcast(std::string& bytes);

    /// Tells all ranks the \p own record and finds what to do. Throws WallError when a rank does
    /// not answer, or when the ranks are not in the same frame.
    Orders exchange(const FrameRecord& own);

    /// Returns when all ranks have come to this call. Throws WallError when a rank does not.
    void meet();

    /// "reef-left (rank 0)"
    std::string nameOf(int rank) const;

private:
    Transport& net;
    std::function<void(const std::string&)> say;
    std::vector<std::string> names;
    InputGate gate;
    unsigned operations = 0;
    bool starting = true;                     ///< there was no exchange yet
    std::vector<std::uint32_t> newBeginnings; ///< frames of those after a difference

    void wait();
    std::vector<int> missing();
    bool isSomebodyWaiting();
    std::string listOf(const std::vector<int>& ranks) const;
    bool isSpeaker(const std::vector<int>& others) const;
    [[noreturn]] void fail(const std::string& why, bool isSpeaker) const;
    void begin() { ++operations; }
};

/// Compares the states that the ranks have sent: each part of each rank with what most ranks have,
/// and if no value has more ranks than the others, with that of rank 0.
std::optional<Mismatch> differenceIn(const std::vector<FrameRecord>& records);

} // namespace wall
