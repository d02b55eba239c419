#include "Names.h"

#include <algorithm>
#include <limits>

namespace nullgl {

unsigned Names::take(unsigned count)
{
    if (count == 1 && !free.empty()) {
        const unsigned name = *free.begin();
        use(name);
        return name;
    }
    if (count == 0 || count > std::numeric_limits<unsigned>::max() - highest) {
        return 0;
    }
    const unsigned first = highest + 1;
    for (unsigned i = 0; i < count; ++i) {
        use(first + i);
    }
    return first;
}

void Names::use(unsigned name)
{
    if (used.insert(name).second) {
        free.erase(name);
        highest = std::max(highest, name);
    }
}

void Names::release(unsigned name)
{
    if (used.erase(name) == 0) {
        return;
    }
    free.insert(name);
    while (free.erase(highest) != 0) {
        --highest;
    }
}

} // namespace nullgl
