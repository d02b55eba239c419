/// Mutates files that hold checksums, so that a mutation reaches more than the check of the sum.

#include "Repair.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t capacity,
                                    unsigned seed)
{
    const std::size_t mutated = LLVMFuzzerMutate(data, size, capacity);
    if (seed % 16 != 0) { // wrong checksums are inputs too
        repair(data, mutated);
    }
    return mutated;
}
