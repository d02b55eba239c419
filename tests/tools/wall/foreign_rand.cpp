/// To be preloaded into the ranks of a wall: rank 1 draws a random number that the others do not,
/// in the frames from FOREIGN_FROM to FOREIGN_TO; or it ends in frame FOREIGN_EXIT, as the scene's
/// readers end a process. Each frame ends with a call of glFlush.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

int frame = 0;

int numberOf(const char* variable)
{
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : 0;
}

bool isRankOne()
{
    const char* const rank = std::getenv("OMPI_COMM_WORLD_RANK");
    return rank != nullptr && std::strcmp(rank, "1") == 0;
}

} // namespace

extern "C" void glFlush()
{
    using Flush = void (*)();
    static const auto next = reinterpret_cast<Flush>(dlsym(RTLD_NEXT, "glFlush"));
    ++frame;
    if (isRankOne() && frame >= numberOf("FOREIGN_FROM") && frame <= numberOf("FOREIGN_TO")) {
        static_cast<void>(std::rand());
    }
    if (isRankOne() && frame == numberOf("FOREIGN_EXIT")) {
        std::puts("data/nothing.bmp cannot be read");
        std::exit(0);
    }
    next();
}
