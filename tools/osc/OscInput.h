#pragma once

#include "Command.h"
#include "Counts.h"
#include "PortTaken.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace osc {

/// Listens for OSC messages over UDP; Request.h has their list, docs/live.md describes them for
/// users.
///
/// A thread of its own receives. It does nothing else: it draws no random numbers, prints nothing,
/// gets no signals. Whatever arrives, and however much, memory and time are bounded: a sustained
/// flood is read at 2 MB a second, and the kernel throws away the rest; Inbox.h says what is kept.
/// To senders nothing goes but the answers to /ping and /status, at most 20 a second.
///
/// All operations may be called from any thread.
class OscInput {
public:
    /// Starts to listen.
    /// \param address  of this machine, as a number or a name, of IPv4 or IPv6: 127.0.0.1 for
    /// senders of this
    ///                 machine alone, 0.0.0.0 for those of all networks
    /// \param port     0: any that is free
    /// Throws std::runtime_error with a line for people when it cannot, PortTaken when another
    /// program listens there.
    OscInput(const std::string& address, std::uint16_t port);
    OscInput(const OscInput&) = delete;
    OscInput& operator=(const OscInput&) = delete;

    /// Ends the thread.
    ~OscInput();

    /// \return the port that it listens at
    std::uint16_t port() const;

    /// \return what is due now, oldest first: for each figure at most one FIGURE or RELEASE, the
    /// newest; at most
    ///         one SEED or RESTART, and none for Inbox::RENEWAL_PAUSE from the call after; of all
    ///         others at most 256. Messages of one bundle come together. It never waits for the
    ///         network.
    std::vector<Command> take();

    /// \param line  what /status is answered with; at most 400 bytes of it
    void setStatus(std::string line);

    Counts counts() const;

private:
    class Listener;
    std::unique_ptr<Listener> listener;
};

} // namespace osc
