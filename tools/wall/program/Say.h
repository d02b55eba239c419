#pragma once

#include <string>

namespace wall {

/// Writes a line for the user to standard error, its control characters escaped.
void say(const std::string& line);

/// The same for each line of a text.
void sayLines(const std::string& text);

} // namespace wall
