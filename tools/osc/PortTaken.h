#pragma once

#include <stdexcept>

namespace osc {

/// Another program listens at the port. It may be free later.
class PortTaken : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace osc
