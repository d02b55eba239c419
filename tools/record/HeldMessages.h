#pragma once

namespace record {

/// Keeps what is written to standard output, while this object lives, from being seen: the scene
/// tells there how it loads, which is of interest only when something goes wrong.
class HeldMessages {
public:
    /// Throws std::runtime_error when there is no room for them.
    HeldMessages();
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;

    /// Gives standard output back.
    ~HeldMessages();

    /// Writes what was held so far to standard error, its control characters escaped.
    void show() const;

private:
    int output; ///< owns; the real standard output, -1 = it was closed
    int held;   ///< owns; a file without a name
};

} // namespace record
