#include "FigureInput.h"

#include "OscInput.h"
#include "Steering.h"

namespace wall {

namespace {

class OscFigureInput final : public FigureInput {
public:
    explicit OscFigureInput(const FigureAddress& address) : input(address.host, address.port) {}

    Renewal take(Steering& steering) override
    {
        using Kind = osc::Command::Kind;
        Renewal renewal;
        for (const osc::Command& command : input.take()) {
            if (command.kind == Kind::FIGURE) {
                steering.lead(command.figure, static_cast<double>(command.x),
                              static_cast<double>(command.y));
            } else if (command.kind == Kind::RELEASE) {
                steering.release(command.figure);
            } else if (command.kind == Kind::SEED) {
                renewal = {true, command.seed};
            } else if (command.kind == Kind::RESTART) {
                renewal.asked = true;
            }
        }
        return renewal;
    }

private:
    osc::OscInput input;
};

} // namespace

std::unique_ptr<FigureInput> listenForFigures(const FigureAddress& address)
{
    return std::make_unique<OscFigureInput>(address);
}

} // namespace wall
