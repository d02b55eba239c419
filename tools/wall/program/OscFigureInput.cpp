#include "FigureInput.h"

#include "Launch.h"
#include "OscInput.h"
#include "Say.h"
#include "Steering.h"

#include <chrono>
#include <utility>
#include <vector>

namespace wall {

namespace {

using Clock = std::chrono::steady_clock;

class OscFigureInput final : public FigureInput {
public:
    explicit OscFigureInput(FigureAddress where) : address(std::move(where))
    {
        listen();
        if (!input) {
            say(hostName() + ": another program listens at " + address.host + ", port " +
                std::to_string(address.port) + ": messages are heard once it is gone");
        }
    }

    Renewal take(Steering& steering) override
    {
        using Kind = osc::Command::Kind;
        if (!input && Clock::now() - tried >= std::chrono::seconds(1)) {
            listen();
        }
        Renewal renewal;
        for (const osc::Command& command : input ? input->take() : std::vector<osc::Command>()) {
            if (command.kind == Kind::FIGURE) {
                steering.lead(command.figure, static_cast<double>(command.x),
                              static_cast<double>(command.y));
            } else if (command.kind == Kind::RELEASE) {
                steering.release(command.figure);
            } else if (command.kind == Kind::SEED) {
                renewal = {true, command.seed};
                steering = {};
            } else if (command.kind == Kind::RESTART) {
                renewal.asked = true;
                steering = {};
            }
        }
        return renewal;
    }

private:
    FigureAddress address;
    std::optional<osc::OscInput> input; ///< none while another program has the port
    Clock::time_point tried;

    /// Opens the port, unless another program has it: that may be a wall which hangs, and which
    /// kelpix-show ends once this one is in front.
    void listen()
    {
        tried = Clock::now();
        try {
            input.emplace(address.host, address.port);
        } catch (const osc::PortTaken&) {
            input.reset();
        }
    }
};

} // namespace

std::unique_ptr<FigureInput> listenForFigures(const FigureAddress& address)
{
    return std::make_unique<OscFigureInput>(address);
}

} // namespace wall
