/// Mutates files that hold checksums. Without the repair hardly a mutation would get past their
/// check.

#include "Repair.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t capacity,
                                    unsigned seed)
{
    const std::size_t mutated = LLVMFuzzerMutate(data, size, capacity);
    if (seed % 16 != 0) { // wrong checksums are inputs too
        for (std::size_t at = 0; at < mutated;) {
            at = repair(data, mutated, at);
        }
    }
    return mutated;
}
