#pragma once

#include <ctime>
#include <string>

namespace status {

/// \return a time in UTC, such as 2026-11-22T10:40:42Z, wherever the machine stands
std::string text(std::time_t time);

} // namespace status
