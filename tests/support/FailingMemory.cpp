#include "FailingMemory.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <link.h>
#include <new>

namespace {

struct Range {
    std::uintptr_t begin, end;
};

/// Where the callers are whose allocations fail.
std::array<Range, 16> callers;
std::size_t callerCount = 0;

thread_local bool armed = false;
thread_local long left = 0;
thread_local bool forEver = false;
thread_local bool failed = false;

std::atomic<long> held = 0;

bool isCaller(const void* address)
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    for (std::size_t i = 0; i < callerCount; ++i) {
        if (callers[i].begin <= place && place < callers[i].end) {
            return true;
        }
    }
    return false;
}

/// Whether this allocation is one that fails.
bool fails(const void* caller)
{
    if (!armed || !isCaller(caller)) {
        return false;
    }
    const bool now = left == 0 || (left < 0 && forEver);
    left -= left >= 0;
    failed = failed || now;
    return now;
}

int noteCaller(dl_phdr_info* module, std::size_t, void*)
{
    // The program itself has no name.
    const char* const names[] = {"libstdc++", "libpng",      "libjpeg",
                                 "libz.",     "libfreetype", "libGLU"};
    bool counts = module->dlpi_name[0] == '\0';
    for (const char* name : names) {
        counts = counts || std::strstr(module->dlpi_name, name) != nullptr;
    }
    for (int i = 0; counts && i < module->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = module->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
            const std::uintptr_t begin = module->dlpi_addr + segment.p_vaddr;
            callers.at(callerCount++) = {begin, begin + segment.p_memsz};
        }
    }
    return 0;
}

} // namespace

FailingMemory::FailingMemory(long n, Duration duration)
{
    if (callerCount == 0) {
        dl_iterate_phdr(noteCaller, nullptr);
    }
    left = n;
    forEver = duration == FOR_EVER;
    failed = false;
    armed = true;
}

FailingMemory::~FailingMemory()
{
    armed = false;
}

bool FailingMemory::hasFailed() const
{
    return failed;
}

long FailingMemory::blocks()
{
    return held;
}

#ifdef KELPIX_SANITIZED

namespace {

void* allocate(std::size_t size)
{
    return std::malloc(size);
}

void release(void* memory)
{
    std::free(memory);
}

} // namespace

#else

// The C library's own names for what is replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) noexcept
{
    void* const memory = fails(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
    held += memory != nullptr;
    return memory;
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    void* const memory = fails(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
    held += memory != nullptr;
    return memory;
}

void* realloc(void* memory, std::size_t size) noexcept
{
    void* const moved = fails(__builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
    held += memory == nullptr && moved != nullptr;
    held -= memory != nullptr && size == 0;
    return moved;
}

void free(void* memory) noexcept
{
    held -= memory != nullptr;
    __libc_free(memory);
}
}

namespace {

void* allocate(std::size_t size)
{
    void* const memory = __libc_malloc(size);
    held += memory != nullptr;
    return memory;
}

void release(void* memory)
{
    free(memory);
}

} // namespace

#endif

void* operator new(std::size_t size)
{
    void* const memory = fails(__builtin_return_address(0)) ? nullptr : allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](std::size_t size)
{
    void* const memory = fails(__builtin_return_address(0)) ? nullptr : allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return fails(__builtin_return_address(0)) ? nullptr : allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return fails(__builtin_return_address(0)) ? nullptr : allocate(size);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    release(memory);
}
