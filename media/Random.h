#pragma once

#include <cstdint>

namespace media {

/// A small integer random generator (Vigna's SplitMix64). The same seed gives the same numbers
/// everywhere: the distributions are written here, since those of the standard library differ from
/// one library to the next. For the same reason its users never make two calls in one expression
/// whose order of evaluation is unspecified.
class Random {
public:
    /// \param stream  makes generators of one seed independent of each other
    explicit Random(std::uint64_t seed, std::uint64_t stream = 0)
        : state(seed * 0x9E3779B97F4A7C15u + stream * 0xD1B54A32D192ED03u)
    {
        next();
    }

    /// The next 64 random bits.
    std::uint64_t next()
    {
        state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// Evenly spread in [0, 1), a multiple of 2^-24.
    float unit() { return static_cast<float>(next() >> 40) * 0x1p-24f; }

    /// Evenly spread in [low, high).
    float between(float low, float high) { return low + (high - low) * unit(); }

    /// Evenly spread in 0 .. count - 1. \param count  at least 1
    int below(int count) { return static_cast<int>((next() >> 33) % static_cast<unsigned>(count)); }

private:
    std::uint64_t state;
};

} // namespace media
