#pragma once

#include "Conductor.h"

#include <ctime>
#include <optional>
#include <string>

namespace show {

/// How things are, for those who look after the machine.
struct Health {
    std::time_t time = 0;
    int showing = 0; ///< the number of the showing in front, counted from 1; 0 = none yet
    std::optional<double> rate; ///< frames a second; none = not yet counted, or nothing is in front
    long memory = 0;            ///< resident, of the processes of the showing in front, in bytes
    int faults = 0;             ///< since the start
    std::string lastFault;      ///< empty = none
    std::time_t faultTime = 0;  ///< of the last one
};

/// \return one line, without its end: NAME=VALUE, separated by spaces
std::string lineOf(const Health& health);

} // namespace show
