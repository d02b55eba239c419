#pragma once

#include <cstdio>
#include <string>

namespace media {

/// Catches what is written to standard output and standard error during its lifetime: the readers
/// of images say there what is wrong with a file. When no temporary file can be made, nothing is
/// caught and the messages are printed.
class CheckMessages {
public:
    CheckMessages();
    CheckMessages(const CheckMessages&) = delete;
    CheckMessages& operator=(const CheckMessages&) = delete;
    ~CheckMessages() { take(); }

    /// Stops catching.
    /// \return the messages, those of one stream in their order, separated by "; "
    std::string take();

private:
    std::FILE* caught = nullptr; ///< owns; null when nothing is being caught
    int output = -1;             ///< owns: the descriptors of the two streams before
    int errors = -1;
};

} // namespace media
