#pragma once

#include <optional>
#include <string>

namespace show {

/// The service manager that has started this process, as sd_notify(3) describes the protocol.
/// Without one nothing has an effect.
class Service {
public:
    /// Takes the address from the environment, and removes it there: what this process starts must
    /// not speak for it.
    Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    ~Service();

    /// \return the seconds within which the manager wants a sign of life; none = it wants none.
    ///         The manager's own word on which process that is for is not looked at: the unit's
    ///         main process may be another one, such as a compositor around this.
    std::optional<double> watchdog() const { return interval; }

    /// \param state  lines NAME=VALUE
    void notify(const std::string& state) const;

private:
    std::string address;
    std::optional<double> interval;
    int socket = -1;
};

} // namespace show
