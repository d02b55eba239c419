#include "ArmedTimers.h"

#include <FL/Fl.H>
#include <dlfcn.h>

std::vector<ArmedTimer>& armedTimers()
{
    static std::vector<ArmedTimer> timers;
    return timers;
}

namespace {

using ArmTimer = void (*)(double, Fl_Timeout_Handler, void*);

ArmTimer fltksOwn(const char* symbol)
{
    return reinterpret_cast<ArmTimer>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

void Fl::add_timeout(double seconds, Fl_Timeout_Handler callback, void* argument)
{
    static const ArmTimer next = fltksOwn("_ZN2Fl11add_timeoutEdPFvPvES0_");
    armedTimers().push_back({seconds, callback, argument, false});
    next(seconds, callback, argument);
}

void Fl::repeat_timeout(double seconds, Fl_Timeout_Handler callback, void* argument)
{
    static const ArmTimer next = fltksOwn("_ZN2Fl14repeat_timeoutEdPFvPvES0_");
    armedTimers().push_back({seconds, callback, argument, true});
    next(seconds, callback, argument);
}
