#include "FailingMemory.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <link.h>
#include <mutex>
#include <new>
#include <unordered_set>

namespace {

struct Range {
    std::uintptr_t begin, end;
    bool isProgram;
    bool fails;
};

/// The code whose allocations are counted, and of it that whose allocations can fail.
std::array<Range, 16> callers;
std::size_t callerCount = 0;

bool (*programFails)() = nullptr; ///< the condition of failWhile

thread_local bool armed = false;
thread_local long left = 0;
thread_local bool forEver = false;
thread_local bool failed = false;

/// \return null when the address belongs to none of them
const Range* callerAt(const void* address)
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    for (std::size_t i = 0; i < callerCount; ++i) {
        if (callers[i].begin <= place && place < callers[i].end) {
            return &callers[i];
        }
    }
    return nullptr;
}

/// Whether this allocation is one that fails.
bool fails(const void* address)
{
    const Range* const caller = armed || programFails != nullptr ? callerAt(address) : nullptr;
    if (caller == nullptr || !caller->fails) {
        return false;
    }
    if (programFails != nullptr) {
        return caller->isProgram && programFails();
    }
    const bool now = left == 0 || (left < 0 && forEver);
    left -= left >= 0;
    failed = failed || now;
    return now;
}

int noteCaller(dl_phdr_info* module, std::size_t, void*)
{
    const char* const names[] = {"libstdc++", "libpng",      "libjpeg",
                                 "libz.",     "libfreetype", "libGLU"};
    const bool isProgram = module->dlpi_name[0] == '\0'; // it has no name
    bool fails = isProgram;
    for (const char* name : names) {
        fails = fails || std::strstr(module->dlpi_name, name) != nullptr;
    }
    // The C library's allocations succeed, but count: a file left open is a leak.
    const bool counts = fails || std::strstr(module->dlpi_name, "libc.") != nullptr;
    for (int i = 0; counts && i < module->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = module->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
            const std::uintptr_t begin = module->dlpi_addr + segment.p_vaddr;
            callers.at(callerCount++) = {begin, begin + segment.p_memsz, isProgram, fails};
        }
    }
    return 0;
}

void findCallers()
{
    if (callerCount == 0) {
        dl_iterate_phdr(noteCaller, nullptr);
    }
}

} // namespace

void FailingMemory::failWhile(bool (*condition)())
{
    findCallers();
    programFails = condition;
}

FailingMemory::FailingMemory(long n, Duration duration)
{
    findCallers();
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

#ifdef KELPIX_SANITIZED

namespace {

void* allocate(std::size_t size, const void*)
{
    return std::malloc(size);
}

void release(void* memory)
{
    std::free(memory);
}

} // namespace

std::size_t FailingMemory::blocks()
{
    return 0;
}

#else

// The C library's functions under the names that stay.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);
}

namespace {

/// Allocates by the C library, not by the replacements below.
template<typename T>
struct LibraryAllocator {
    using value_type = T;

    LibraryAllocator() = default;
    template<typename Other>
    explicit LibraryAllocator(const LibraryAllocator<Other>&)
    {
    }
    T* allocate(std::size_t count) { return static_cast<T*>(__libc_malloc(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t) { __libc_free(memory); }
    bool operator==(const LibraryAllocator&) const { return true; }
};

/// The blocks that the code under test has not freed. While there are none, nobody takes the lock:
/// a process that is forked while another thread holds it could never get it.
class Blocks {
public:
    std::size_t count() const { return count_; }

    void add(void* memory)
    {
        const std::lock_guard lock(mutex_);
        blocks_.insert(memory);
        count_ = blocks_.size();
    }

    /// \return whether the block was one of these
    bool remove(void* memory)
    {
        if (count_ == 0) {
            return false;
        }
        const std::lock_guard lock(mutex_);
        const bool wasHeld = blocks_.erase(memory) != 0;
        count_ = blocks_.size();
        return wasHeld;
    }

private:
    std::atomic<std::size_t> count_ = 0;
    std::mutex mutex_;
    std::unordered_set<void*, std::hash<void*>, std::equal_to<>, LibraryAllocator<void*>> blocks_;
};

/// Never destroyed: memory is freed until the process has ended.
Blocks& held()
{
    alignas(Blocks) static std::array<unsigned char, sizeof(Blocks)> place;
    static auto* const blocks = new (place.data()) Blocks;
    return *blocks;
}

/// Notes a block if the code under test allocated it. \return the block
void* noted(void* memory, const void* caller)
{
    if (armed && memory != nullptr && callerAt(caller) != nullptr) {
        held().add(memory);
    }
    return memory;
}

void* allocate(std::size_t size, const void* caller)
{
    return noted(__libc_malloc(size), caller);
}

void release(void* memory)
{
    held().remove(memory);
    __libc_free(memory);
}

} // namespace

std::size_t FailingMemory::blocks()
{
    return held().count();
}

extern "C" {
void* malloc(std::size_t size) noexcept
{
    const void* const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : allocate(size, caller);
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    const void* const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : noted(__libc_calloc(count, size), caller);
}

void* realloc(void* memory, std::size_t size) noexcept
{
    const void* const caller = __builtin_return_address(0);
    if (memory == nullptr) {
        return fails(caller) ? nullptr : allocate(size, caller);
    }
    if (fails(caller)) {
        return nullptr;
    }
    // First: once the block is moved, another thread may get its address.
    const bool isHeld = held().remove(memory);
    void* const moved = __libc_realloc(memory, size);
    if (isHeld && (moved != nullptr || size != 0)) {
        held().add(moved != nullptr ? moved : memory);
    }
    return moved;
}

void free(void* memory) noexcept
{
    release(memory);
}
}

#endif

void* operator new(std::size_t size)
{
    const void* const caller = __builtin_return_address(0);
    void* const memory = fails(caller) ? nullptr : allocate(size, caller);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](std::size_t size)
{
    const void* const caller = __builtin_return_address(0);
    void* const memory = fails(caller) ? nullptr : allocate(size, caller);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    const void* const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : allocate(size, caller);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    const void* const caller = __builtin_return_address(0);
    return fails(caller) ? nullptr : allocate(size, caller);
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
