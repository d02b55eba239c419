#pragma once

#include <cstddef>
#include <set>
#include <unordered_set>

namespace nullgl {

/// The names of one kind of object. Names that are given back are given out again, so that a scene
/// that makes and deletes objects for days needs no more of them than it has at once.
class Names {
public:
    /// \return the first of \p count names in a row, from now on in use; 0 when that many are not
    ///         left, or for a count of 0
    unsigned take(unsigned count);

    /// Has a name in use that the caller chose.
    void use(unsigned name);

    /// Has it in use no more, if it was.
    void release(unsigned name);

    bool contains(unsigned name) const { return used.count(name) != 0; }
    std::size_t size() const { return used.size(); }

private:
    std::unordered_set<unsigned> used;
    std::set<unsigned> free; ///< names below the highest that were given back
    unsigned highest = 0;    ///< no name above it is in use
};

} // namespace nullgl
