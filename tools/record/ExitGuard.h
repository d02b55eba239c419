#pragma once

#include <functional>

namespace record {

/// What is to be done if the process ends by std::exit while this object lives: the scene's readers
/// end it so when the media are unusable, with status 0 for some. The process then ends with
/// status 1, once the guards that live have done their work, the latest first.
class ExitGuard {
public:
    explicit ExitGuard(std::function<void()> work);
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;

    /// Guards end in the reverse order of their making.
    ~ExitGuard();

private:
    std::function<void()> work;
    ExitGuard* outer; ///< borrows; the guard made before, or null

    static ExitGuard* latest;
    static void onExit();
};

} // namespace record
