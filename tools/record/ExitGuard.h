#pragma once

#include <functional>

namespace record {

/// Does its work if the process ends by std::exit while this object lives: the scene's readers call
/// it when they cannot use the media, some of them with status 0. The process then ends with
/// status 1, after all living guards have done their work, the latest first.
class ExitGuard {
public:
    explicit ExitGuard(std::function<void()> work);
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;

    /// Guards are destroyed in the reverse order of their construction.
    ~ExitGuard();

private:
    std::function<void()> work;
    ExitGuard* outer; ///< borrows; the guard made before, or null

    static ExitGuard* latest;
    static void onExit();
};

} // namespace record
