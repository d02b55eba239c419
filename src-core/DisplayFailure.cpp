#include "DisplayFailure.h"

#include <FL/Fl.H>
#include <cstdarg>
#include <cstdio>

namespace {

[[noreturn]] void throwIt(const char* format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throw DisplayFailure(text);
}

} // namespace

void throwDisplayFailures()
{
    Fl::fatal = throwIt;
}
