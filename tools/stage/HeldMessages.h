#pragma once

#include <string>

/// Captures standard output while this object lives. The scene prints there how it loads, which is
/// of interest only when something goes wrong.
class HeldMessages {
public:
    /// Throws std::runtime_error when the messages cannot be captured.
    HeldMessages();
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;

    /// Restores standard output.
    ~HeldMessages();

    /// \return what was captured so far, its control characters escaped but for the ends of lines
    std::string text() const;

    /// Writes that text to standard error.
    void show() const;

private:
    int output; ///< owns; the real standard output, -1 = it was closed
    int held;   ///< owns; a file without a name
};
