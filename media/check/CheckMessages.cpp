#include "CheckMessages.h"

#include <unistd.h>

namespace media {

CheckMessages::CheckMessages() : caught(std::tmpfile())
{
    if (caught == nullptr) {
        return;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    output = dup(STDOUT_FILENO);
    errors = dup(STDERR_FILENO);
    dup2(fileno(caught), STDOUT_FILENO);
    dup2(fileno(caught), STDERR_FILENO);
}

std::string CheckMessages::take()
{
    if (caught == nullptr) {
        return "";
    }
    std::fflush(stdout);
    std::fflush(stderr);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    close(output);
    close(errors);

    std::string text;
    std::rewind(caught);
    for (int c = std::fgetc(caught); c != EOF; c = std::fgetc(caught)) {
        text += c == '\n' ? "; " : std::string(1, static_cast<char>(c));
    }
    std::fclose(caught);
    caught = nullptr;
    return text.ends_with("; ") ? text.substr(0, text.size() - 2) : text;
}

} // namespace media
