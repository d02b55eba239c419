#pragma once

#include <cstddef>
#include <cstdint>

/// Makes the checksums of a mutated file right again, in place. One for each format that has them;
/// a target that links one of them links Mutator.cpp too.
void repair(std::uint8_t* data, std::size_t size);
