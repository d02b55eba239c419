#include "TimeText.h"

namespace status {

std::string text(std::time_t time)
{
    std::tm parts{};
    char text[sizeof "-2147481748-12-31T23:59:60Z"] = {};
    if (gmtime_r(&time, &parts) != nullptr) {
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    }
    return text;
}

} // namespace status
