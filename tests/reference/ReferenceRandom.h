#pragma once

#include <cstdint>
#include <cstdlib>

/// The numbers that srand(seed) and rand() give, from a state of its own: the C library's additive
/// feedback generator over 31 words, which fill 128 bytes.
class ReferenceRandom {
public:
    explicit ReferenceRandom(unsigned seed) { initstate_r(seed, words, sizeof words, &state); }
    ReferenceRandom(const ReferenceRandom&) = delete;
    ReferenceRandom& operator=(const ReferenceRandom&) = delete;

    int next()
    {
        std::int32_t number = 0;
        random_r(&state, &number);
        return number;
    }

private:
    char words[128] = {};
    random_data state = {};
};
