#include "LedFigures.h"

namespace wall {

void setPoses(Lead& lead, const Poses& poses)
{
    lead.flags |= Lead::STEERED;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        if (poses[k]) {
            lead.flags |= Lead::LED << k;
            lead.places[2 * k] = static_cast<float>(poses[k]->x);
            lead.places[2 * k + 1] = static_cast<float>(poses[k]->y);
        }
    }
}

std::optional<Poses> posesOf(const Lead& lead)
{
    if ((lead.flags & Lead::STEERED) == 0) {
        return std::nullopt;
    }
    Poses poses;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        if ((lead.flags & Lead::LED << k) != 0) {
            poses[k] = Place{static_cast<double>(lead.places[2 * k]),
                             static_cast<double>(lead.places[2 * k + 1])};
        }
    }
    return poses;
}

} // namespace wall
