#include "ExitGuard.h"

#include <cstdlib>

namespace record {

ExitGuard* ExitGuard::latest = nullptr;

ExitGuard::ExitGuard(std::function<void()> toDo) : work(std::move(toDo)), outer(latest)
{
    static const int registered = std::atexit(onExit);
    static_cast<void>(registered);
    latest = this;
}

ExitGuard::~ExitGuard()
{
    latest = outer;
}

void ExitGuard::onExit()
{
    if (latest == nullptr) {
        return;
    }
    for (; latest != nullptr; latest = latest->outer) {
        latest->work();
    }
    std::_Exit(EXIT_FAILURE);
}

} // namespace record
