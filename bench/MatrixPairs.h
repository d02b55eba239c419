#pragma once

#include "Job.h"

#include <array>
#include <memory>

namespace bench {

/// Pairs of matrices, and the place for what is made of each pair.
struct MatrixPairs {
    static constexpr int COUNT = 1000;
    using Matrices = std::array<std::array<float, 16>, COUNT>;

    alignas(16) Matrices a;
    alignas(16) Matrices b;
    alignas(16) Matrices out;
};

/// A contender that does one thing to each pair: calls operation(out, a, b).
template<typename Operation>
Contender forEachPair(const char* name, const std::shared_ptr<MatrixPairs>& pairs,
                      Operation operation)
{
    return {name, [pairs, operation] {
                for (std::size_t i = 0; i < MatrixPairs::COUNT; ++i) {
                    operation(pairs->out[i].data(), pairs->a[i].data(), pairs->b[i].data());
                }
            }};
}

} // namespace bench
