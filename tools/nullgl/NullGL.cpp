#include "NullGL.h"

#include "Calls.h"
#include "Context.h"

namespace nullgl {

void Context::raise(GLenum what)
{
    if (error == GL_NO_ERROR) {
        error = what;
    }
}

void reset()
{
    context() = Context();
    resetCalls();
}

void resetCalls()
{
    for (Counter* counter = counters(); counter != nullptr; counter = counter->next) {
        counter->calls = 0;
    }
}

std::int64_t calls(const std::string& function)
{
    for (const Counter* counter = counters(); counter != nullptr; counter = counter->next) {
        if (counter->function == function) {
            return counter->calls;
        }
    }
    return 0;
}

std::map<std::string, std::int64_t> calls()
{
    std::map<std::string, std::int64_t> all;
    for (const Counter* counter = counters(); counter != nullptr; counter = counter->next) {
        if (counter->calls != 0) {
            all[counter->function] = counter->calls;
        }
    }
    return all;
}

Hooks& hooks()
{
    return theHooks;
}

std::size_t lists()
{
    return context().listNames.size();
}

std::int64_t listCommands(unsigned name)
{
    const auto list = context().lists.find(name);
    return list == context().lists.end() ? 0 : list->second.commands;
}

std::int64_t listCommands()
{
    std::int64_t sum = 0;
    for (const auto& [name, list] : context().lists) {
        sum += list.commands;
    }
    return sum;
}

std::size_t textures()
{
    return context().textureNames.size();
}

} // namespace nullgl
