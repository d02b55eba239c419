// A library to be preloaded into the program: its memory is used up as soon as there is a file
// "no-memory" in its working directory. Only what the program itself asks of operator new fails,
// not what its libraries do, so that it is known who meets the failure.

#include <cstdint>
#include <cstdlib>
#include <link.h>
#include <new>
#include <unistd.h>

namespace {

/// The addresses of the program's own code.
struct Code {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};

int readCode(dl_phdr_info* info, std::size_t /*size*/, void* code)
{
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& segment = info->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
            const std::uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
            *static_cast<Code*>(code) = {begin, begin + segment.p_memsz};
        }
    }
    return 1; // the program comes first, and is enough
}

bool isProgram(const void* address)
{
    static const Code code = [] {
        Code found;
        dl_iterate_phdr(readCode, &found);
        return found;
    }();
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return code.begin <= at && at < code.end;
}

} // namespace

void* operator new(std::size_t bytes)
{
    void* const memory = std::malloc(bytes);
    const bool isUsedUp = isProgram(__builtin_return_address(0)) && access("no-memory", F_OK) == 0;
    if (memory == nullptr || isUsedUp) {
        std::free(memory);
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
