#pragma once

#include <cmath>
#include <compare>

/// A float each of whose operations is rounded on its own, whatever the compiler makes of
/// neighboring statements: the number type of the tests' reference. A double becomes a Single only
/// where the code says so.
class Single {
public:
    float value = 0;

    Single() = default;
    Single(float v) : value(v) {}
    explicit Single(double v) : value(rounded(static_cast<float>(v))) {}
    explicit Single(int v) : value(rounded(static_cast<float>(v))) {}

    double wide() const { return static_cast<double>(value); }
    explicit operator int() const { return static_cast<int>(value); }

    friend Single operator+(Single a, Single b) { return rounded(a.value + b.value); }
    friend Single operator-(Single a, Single b) { return rounded(a.value - b.value); }
    friend Single operator*(Single a, Single b) { return rounded(a.value * b.value); }
    friend Single operator/(Single a, Single b) { return rounded(a.value / b.value); }
    friend Single operator-(Single a) { return -a.value; }
    friend bool operator==(Single a, Single b) { return a.value == b.value; }
    friend std::partial_ordering operator<=>(Single a, Single b) { return a.value <=> b.value; }

private:
    static float rounded(float v)
    {
        volatile float stored = v;
        return stored;
    }
};

inline double wide(Single a)
{
    return a.wide();
}

inline Single magnitude(Single a)
{
    return std::fabs(a.value);
}
