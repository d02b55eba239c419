// With FailingMemory.cpp a library to be preloaded into the program: memory is used up as soon as
// there is a file "no-memory" in the working directory.

#include "FailingMemory.h"

#include <unistd.h>

namespace {

[[gnu::constructor]] void start()
{
    FailingMemory::failWhile([] { return access("no-memory", F_OK) == 0; });
}

} // namespace
