#pragma once

#include "Bits.h"
#include "Reference.h"
#include "Vector.h"

#include <algorithm>
#include <list>

/// What the tests compare with the reference code, to the bit.

inline bool same(float actual, Single expected)
{
    return bits(actual) == bits(expected.value);
}

inline bool same(const Vec3& actual, const reference::Triple& expected)
{
    return same(actual.x, expected.x) && same(actual.y, expected.y) && same(actual.z, expected.z);
}

inline bool same(const float* actual, const reference::Mat& expected)
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (!same(actual[i], expected[i])) {
            return false;
        }
    }
    return true;
}

/// As many numbers, and the same ones in the same order.
inline bool same(const std::list<float>& actual, const std::list<Single>& expected)
{
    return std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      [](float a, Single e) { return same(a, e); });
}

MATCHER_P(SameTriple, expected, "")
{
    *result_listener << "where (" << expected.x.value << ", " << expected.y.value << ", "
                     << expected.z.value << ") is expected, and got (" << arg.x << ", " << arg.y
                     << ", " << arg.z << ")";
    return same(arg, expected);
}

/// A float[16].
MATCHER_P(SameMatrix, expected, "")
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (!same(arg[i], expected[i])) {
            *result_listener << "where element " << i << " is " << arg[i] << ", not "
                             << expected[i].value;
            return false;
        }
    }
    return true;
}

/// A Vec3 with exactly these components.
inline auto IsVec3(float x, float y, float z)
{
    return SameTriple(reference::Triple{x, y, z});
}

inline Vec3 toVec3(const reference::Triple& t)
{
    return {t.x.value, t.y.value, t.z.value};
}

inline reference::Triple toTriple(const Vec3& v)
{
    return {v.x, v.y, v.z};
}
