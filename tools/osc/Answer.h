#pragma once

#include "Request.h"

#include <string>
#include <vector>

namespace osc {

/// The most characters of a status; the rest is cut off.
constexpr std::size_t LONGEST_STATUS = 400;

/// \param question  PING or STATUS
/// \param status    without zeros
/// \return the packet of /pong, or of /status with the text; empty when there is no memory
std::vector<unsigned char> answerTo(Request::Kind question, const std::string& status);

} // namespace osc
