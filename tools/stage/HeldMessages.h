#pragma once

#include <cstdio>
#include <string>

/// Captures what is printed while this object lives. The scene prints to standard output how it
/// loads, which is of interest only when something goes wrong.
class HeldMessages {
public:
    enum class From { output, errors };

    /// Throws std::runtime_error when the messages cannot be captured.
    /// \param from  standard output, or standard error
    explicit HeldMessages(From from = From::output);
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;

    /// Prints to where it was before from then on; what was captured is forgotten.
    ~HeldMessages();

    /// \return what was captured so far, its control characters escaped but for the ends of lines
    std::string text() const;

    /// Writes that text to standard error.
    void show() const;

private:
    std::FILE* stream;
    int output; ///< owns; where it led before, -1 = it was closed
    int held;   ///< owns; a file without a name
};
