#pragma once

#include <cmath>
#include <compare>

/// A float whose every operation is rounded on its own, whatever the compiler makes of neighbouring
/// statements: what the reference code of the tests computes with. A double becomes a Single only
/// where the code says so.
class Single {
public:
    float value = 0;

    Single() = default;
    Single(float v) : value(v) {}
    explicit Single(double v) : value(rounded(static_cast<float>(v))) {}
    explicit Single(int v) : value(rounded(static_cast<float>(v))) {}

    double wide() const { return static_cast<double>(value); }

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

inline Single magnitude(Single a)
{
    return std::fabs(a.value);
}
