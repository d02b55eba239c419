#pragma once

#include <cstdio>
#include <span>

/// The words of a text file. White space is that of the C locale, whatever the program's locale is.
namespace Files {

/// \param c  a character or EOF, which is none
constexpr bool isSpace(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Skips white space. \return the first character after it, which is taken too; EOF at the end
int skipSpace(std::FILE* file);

/// Reads one word, and the character after it, as "%s" does, but keeps only what fits.
/// \param word  receives the word, terminated. Without a word it stays as it was. At least one
///              character
/// \return whether there was a word before the end of the file
bool readWord(std::FILE* file, std::span<char> word);

} // namespace Files
