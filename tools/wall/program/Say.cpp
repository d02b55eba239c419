#include "Say.h"

#include "Printable.h"

#include <cstdio>
#include <sstream>

namespace wall {

void say(const std::string& line)
{
    std::fprintf(stderr, "kelpix-wall: %s\n", Files::printable(line).c_str());
}

void sayLines(const std::string& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        say(line);
    }
}

} // namespace wall
