#pragma once

#include "FigureAddress.h"

#include <cstdint>
#include <memory>
#include <optional>

class Steering;

namespace wall {

/// What messages ask of a wall: they lead the figures, and let the scene begin anew.
class FigureInput {
public:
    /// Whether the scene begins anew, and with which seed; none: with the same one.
    struct Renewal {
        bool asked = false;
        std::optional<std::uint32_t> seed;
    };

    virtual ~FigureInput() = default;

    /// Does what has arrived since the last call.
    /// \param steering  is as new where the scene begins anew, but for what came after that
    virtual Renewal take(Steering& steering) = 0;
};

/// Listens for OSC messages over UDP. While another program listens there, which a line says, it
/// tries again each second. Throws std::runtime_error, with a line for the user, when it cannot
/// listen for another reason, or when this program was built without OSC.
std::unique_ptr<FigureInput> listenForFigures(const FigureAddress& address);

} // namespace wall
