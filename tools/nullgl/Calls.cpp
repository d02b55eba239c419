#include "Calls.h"

namespace nullgl {

Counter*& counters()
{
    static Counter* first = nullptr;
    return first;
}

Counter::Counter(const char* name) : function(name), next(counters())
{
    counters() = this;
}

} // namespace nullgl
