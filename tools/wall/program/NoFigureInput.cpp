#include "FigureInput.h"

#include <stdexcept>

namespace wall {

std::unique_ptr<FigureInput> listenForFigures(const FigureAddress& /*address*/)
{
    throw std::runtime_error("this kelpix-wall was built without liblo, which --osc needs");
}

} // namespace wall
