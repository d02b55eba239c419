#pragma once

#include <cstdio>
#include <string>

namespace media {

/// Catches what is written to standard output and standard error while it lives: the readers of
/// pictures say there what is wrong with a file. Where no temporary file can be made, the messages
/// go where they always go.
class CheckMessages {
public:
    CheckMessages();
    CheckMessages(const CheckMessages&) = delete;
    CheckMessages& operator=(const CheckMessages&) = delete;
    ~CheckMessages() { take(); }

    /// Ends the catching.
    /// \return the messages, those of one stream in their order, separated by "; "
    std::string take();

private:
    std::FILE* caught = nullptr; ///< owns; null when nothing is caught, or no more
    int output = -1;             ///< owns: the descriptors that were there before
    int errors = -1;
};

} // namespace media
