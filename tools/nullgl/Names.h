#pragma once

#include <cstddef>
#include <set>
#include <unordered_set>

namespace nullgl {

/// The names of one kind of object. A released name is used again, so a scene that makes and
/// deletes objects for days needs only as many names as it has objects at once.
class Names {
public:
    /// Takes \p count free names in a row.
    /// \return the first of them; 0 when there are not so many, or for a count of 0
    unsigned take(unsigned count);

    /// Marks a name that the caller chose as used.
    void use(unsigned name);

    /// Marks the name as free, if it is used.
    void release(unsigned name);

    bool contains(unsigned name) const { return used.count(name) != 0; }
    std::size_t size() const { return used.size(); }

private:
    std::unordered_set<unsigned> used;
    std::set<unsigned> free; ///< free names below the highest used one
    unsigned highest = 0;    ///< the highest used name; 0 = none
};

} // namespace nullgl
