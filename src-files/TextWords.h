#pragma once

#include <cstdio>
#include <span>

/// The words of a text file. White space is that of the C locale, whatever the program's locale is.
namespace Files {

/// \param c  a character, or EOF, which is not white space
constexpr bool isSpace(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Skips white space.
/// \return the first character after it, which is consumed; EOF at the end
int skipSpace(std::FILE* file);

/// Skips white space and reads one word as "%s" does, keeping only what fits; unlike "%s" it also
/// consumes the character after it.
/// \param word  at least one element; receives the word and its terminator; unchanged when there
///              is none
/// \return whether there was a word before the end of the file
bool readWord(std::FILE* file, std::span<char> word);

} // namespace Files
