#include "TextWords.h"

#include <cstddef>

namespace Files {

// Without the lock of the stream: recordings have hundreds of thousands of words.

int skipSpace(std::FILE* file)
{
    int c = getc_unlocked(file);
    while (isSpace(c)) {
        c = getc_unlocked(file);
    }
    return c;
}

bool readWord(std::FILE* file, std::span<char> word)
{
    int c = skipSpace(file);
    if (c == EOF) {
        return false;
    }
    std::size_t length = 0;
    while (c != EOF && !isSpace(c)) {
        if (length < word.size() - 1) {
            word[length++] = static_cast<char>(c);
        }
        c = getc_unlocked(file);
    }
    word[length] = '\0';
    return true;
}

} // namespace Files
