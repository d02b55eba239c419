#include "Memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

// The linker hands every call of NAME to __wrap_NAME and calls the library's by __real_NAME. These
// are the names of new, new[], both without exceptions, realloc and strdup.
extern "C" {
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __real_realloc(void* memory, std::size_t size);
char* __real_strdup(const char* text);
}

namespace {

bool planned = false;
bool counting = false;
unsigned left = 0; ///< allocations that succeed before one fails
bool failed = false;

} // namespace

using fuzz::memory::runsOut;

extern "C" {

void* __wrap__Znwm(std::size_t size)
{
    if (runsOut(size)) {
        throw std::bad_alloc();
    }
    return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size)
{
    if (runsOut(size)) {
        throw std::bad_alloc();
    }
    return __real__Znam(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag)
{
    return runsOut(size) ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag)
{
    return runsOut(size) ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}

void* __wrap_realloc(void* memory, std::size_t size)
{
    return runsOut(size) ? nullptr : __real_realloc(memory, size);
}

char* __wrap_strdup(const char* text)
{
    return runsOut() ? nullptr : __real_strdup(text);
}

} // extern "C"

namespace fuzz::memory {

void plan(unsigned number)
{
    planned = true;
    failed = false;
    left = number;
}

bool forget()
{
    planned = false;
    return failed;
}

bool isScarce()
{
    return planned;
}

void enter()
{
    counting = true;
}

void leave()
{
    counting = false;
}

bool runsOut(std::size_t size)
{
    if (counting && size > most) {
        return true;
    }
    if (!planned || !counting || failed) {
        return false;
    }
    failed = left == 0;
    --left;
    return failed;
}

} // namespace fuzz::memory
